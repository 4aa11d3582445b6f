#include "files/PictureDecoding.h"

#include "files/ColourProfiles.h"
#include "files/FileHeaders.h"

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <string>
#include <vector>

// jpeglib.h wants size_t and FILE from others.
#include <jpeglib.h>

#include <jerror.h>

// JPEG has no checksums: what is known of damage is what the decoder stumbles over. It goes on with
// grey where data are missing, and says so in warnings, which are collected here.

namespace
{

struct JpegWork
{
    jpeg_decompress_struct jpeg = {};
    jpeg_error_mgr errors = {};
    jpeg_source_mgr source = {};
    jpeg_progress_mgr progress = {};
    std::jmp_buf giveUp;
    Decoding* decoding = nullptr;
    uint8_t buffer[1 << 16];
    bool inPicture = false; // behind the headers
    std::vector<uint8_t> inks;
};

JpegWork* WorkOf(j_common_ptr jpeg)
{
    return static_cast<JpegWork*>(jpeg->client_data);
}

// How much of the picture has come. The passes of a progressive file each bring all of it, and how
// many there will be is not known.
double ShareOf(const JpegWork& work)
{
    const jpeg_decompress_struct& jpeg = work.jpeg;
    if (!work.inPicture || jpeg.output_height == 0)
        return 0.0;
    return double(jpeg.output_scanline) / jpeg.output_height;
}

std::string MessageOf(j_common_ptr jpeg)
{
    char text[JMSG_LENGTH_MAX] = "";
    (*jpeg->err->format_message)(jpeg, text);
    return text;
}

void NoteJpegDamage(j_common_ptr jpeg)
{
    JpegWork* work = WorkOf(jpeg);
    const double share = ShareOf(*work);
    if (jpeg->err->msg_code != JWRN_JPEG_EOF)
        NoteDamage(work->decoding, MessageOf(jpeg), share);
    else if (work->inPicture && jpeg_has_multiple_scans(&work->jpeg))
        NoteDamage(work->decoding,
                   "the file ends in pass " + std::to_string(work->jpeg.input_scan_number) +
                       " of the picture",
                   share);
    else
        NoteDamage(work->decoding, EndText(share), share);
}

// Fill bytes between pieces of the picture, as some cameras write them, hide nothing.
bool AreFillBytes(const JpegWork& work, int count)
{
    // The library has not taken the marker behind them yet.
    const uint8_t* end = work.source.next_input_byte;
    return end - work.buffer >= count &&
           std::all_of(end - count, end, [](uint8_t byte) { return byte == 0 || byte == 0xFF; });
}

void OnMessage(j_common_ptr jpeg, int level)
{
    if (level >= 0)
        return;
    const JpegWork& work = *WorkOf(jpeg);
    switch (jpeg->err->msg_code)
    {
    case JWRN_ADOBE_XFORM:
    case JWRN_BOGUS_ICC:
    case JWRN_JFIF_MAJOR: return;
    case JWRN_EXTRANEOUS_DATA:
        if (!work.inPicture || AreFillBytes(work, jpeg->err->msg_parm.i[0]))
            return;
        break;
    }
    NoteJpegDamage(jpeg);
}

[[noreturn]] void OnError(j_common_ptr jpeg)
{
    std::longjmp(WorkOf(jpeg)->giveUp, 1);
}

void Ignore(j_decompress_ptr) {}

boolean FillInput(j_decompress_ptr jpeg)
{
    JpegWork* work = WorkOf(reinterpret_cast<j_common_ptr>(jpeg));
    size_t count = std::fread(work->buffer, 1, sizeof work->buffer, work->decoding->file);
    if (count == 0)
    {
        WARNMS(jpeg, JWRN_JPEG_EOF);
        work->buffer[count++] = 0xFF;
        work->buffer[count++] = JPEG_EOI;
    }
    work->source.next_input_byte = work->buffer;
    work->source.bytes_in_buffer = count;
    return TRUE;
}

void SkipInput(j_decompress_ptr jpeg, long count)
{
    jpeg_source_mgr* source = jpeg->src;
    while (count > long(source->bytes_in_buffer))
    {
        count -= long(source->bytes_in_buffer);
        FillInput(jpeg);
    }
    source->next_input_byte += std::max(count, 0L);
    source->bytes_in_buffer -= size_t(std::max(count, 0L));
}

// Each pass goes over the whole picture: a small file with thousands of them would take hours.
void OnProgress(j_common_ptr jpeg)
{
    const int kMostScans = 500;
    if (WorkOf(jpeg)->jpeg.input_scan_number > kMostScans)
        ERREXIT(jpeg, JERR_BAD_PROGRESSION);
}

void StartReading(JpegWork* work)
{
    work->jpeg.err = jpeg_std_error(&work->errors);
    work->errors.emit_message = OnMessage;
    work->errors.error_exit = OnError;
    work->jpeg.client_data = work;
    jpeg_create_decompress(&work->jpeg);
    work->source.init_source = Ignore;
    work->source.fill_input_buffer = FillInput;
    work->source.skip_input_data = SkipInput;
    work->source.resync_to_restart = jpeg_resync_to_restart;
    work->source.term_source = Ignore;
    work->jpeg.src = &work->source;
    work->progress.progress_monitor = OnProgress;
    work->jpeg.progress = &work->progress;
    jpeg_save_markers(&work->jpeg, JPEG_APP0 + 2, 0xFFFF); // the profile, for inks
}

// At the very least a block of 8 x 8 samples takes a bit. Files with passes are kept in memory as
// coefficients until the last one.
PictureClaim ClaimOf(const jpeg_decompress_struct& jpeg)
{
    int64_t blocks = 0;
    for (int i = 0; i < jpeg.num_components; ++i)
    {
        const jpeg_component_info& part = jpeg.comp_info[i];
        blocks += int64_t(part.width_in_blocks) * part.height_in_blocks;
    }
    PictureClaim claim;
    claim.width = jpeg.image_width;
    claim.height = jpeg.image_height;
    claim.components = jpeg.num_components == 1 ? 1 : 3;
    claim.leastFileBytes = blocks / 8;
    claim.decoderBytes =
        jpeg_has_multiple_scans(const_cast<jpeg_decompress_struct*>(&jpeg)) ? blocks * 128 : 0;
    return claim;
}

// False when the kind of file is not read.
bool ChooseColours(JpegWork* work)
{
    jpeg_decompress_struct& jpeg = work->jpeg;
    switch (jpeg.num_components)
    {
    case 1: jpeg.out_color_space = JCS_GRAYSCALE; return true;
    case 3: jpeg.out_color_space = JCS_EXT_BGR; return true;
    case 4: jpeg.out_color_space = JCS_CMYK; return true;
    }
    return Refuse(work->decoding, LoadProblem::KindNotSupported,
                  "JPEG with " + std::to_string(jpeg.num_components) + " components");
}

// Every coefficient of a file with passes has to have come to its last bit.
void CheckPasses(JpegWork* work)
{
    const jpeg_decompress_struct& jpeg = work->jpeg;
    if (!jpeg.progressive_mode || !jpeg.coef_bits)
        return;
    for (int i = 0; i < jpeg.num_components; ++i)
        if (std::any_of(jpeg.coef_bits[i], jpeg.coef_bits[i] + DCTSIZE2,
                        [](int missing) { return missing != 0; }))
            NoteDamage(work->decoding, "passes of the picture are missing", 1.0);
}

void ReadRows(JpegWork* work, const InkTransform* inks)
{
    jpeg_decompress_struct& jpeg = work->jpeg;
    const Picture& picture = work->decoding->picture;
    const bool acceptDamaged = work->decoding->options.acceptDamaged;
    while (jpeg.output_scanline < jpeg.output_height &&
           (acceptDamaged || work->decoding->damage.empty()))
    {
        uint8_t* row = PicRow<uint8_t>(picture, int(jpeg.output_scanline));
        JSAMPROW target = inks ? work->inks.data() : row;
        jpeg_read_scanlines(&jpeg, &target, 1);
        if (inks)
            inks->ToColours(row, work->inks.data(), picture->width);
    }
}

// What has an owner is made before the library may jump back. False when it gave up.
bool RunHeader(JpegWork* work)
{
    if (setjmp(work->giveUp) != 0)
        return false;
    StartReading(work);
    jpeg_read_header(&work->jpeg, TRUE);
    return true;
}

bool RunPicture(JpegWork* work, const InkTransform* inks)
{
    if (setjmp(work->giveUp) != 0)
        return false;
    jpeg_start_decompress(&work->jpeg);
    ReadRows(work, inks);
    if (work->jpeg.output_scanline == work->jpeg.output_height)
    {
        CheckPasses(work);
        jpeg_finish_decompress(&work->jpeg);
    }
    return true;
}

std::vector<uint8_t> ProfileOf(JpegWork* work)
{
    JOCTET* profile = nullptr;
    unsigned length = 0;
    if (setjmp(work->giveUp) != 0 || !jpeg_read_icc_profile(&work->jpeg, &profile, &length))
        return {};
    std::vector<uint8_t> bytes(profile, profile + length);
    std::free(profile);
    return bytes;
}

// What the library gave up for.
void NoteError(JpegWork* work)
{
    const auto common = reinterpret_cast<j_common_ptr>(&work->jpeg);
    switch (work->errors.msg_code)
    {
    case JERR_OUT_OF_MEMORY: Refuse(work->decoding, LoadProblem::OutOfMemory); return;
    case JERR_SOF_UNSUPPORTED:
    case JERR_BAD_PRECISION:
    case JERR_CONVERSION_NOTIMPL:
        Refuse(work->decoding, LoadProblem::KindNotSupported, MessageOf(common));
        return;
    }
    NoteJpegDamage(common);
}

void ReadWith(JpegWork* work)
{
    Decoding* decoding = work->decoding;
    if (!RunHeader(work))
        return NoteError(work);
    if (!ChooseColours(work))
        return;
    if (!MakePicture(decoding, ClaimOf(work->jpeg)))
        return;
    std::unique_ptr<InkTransform> inks;
    if (work->jpeg.out_color_space == JCS_CMYK)
    {
        // Adobe's programs count inks from full to none.
        inks = std::make_unique<InkTransform>(ProfileOf(work), 8, work->jpeg.saw_Adobe_marker);
        decoding->report.notes.push_back(inks->Note());
        work->inks.resize(size_t(decoding->picture->width) * 4);
    }
    // Rows that never come are black.
    if (decoding->options.acceptDamaged)
        CBxPicBufAPI::SetConst(decoding->picture.Record(), 0);
    work->inPicture = true;
    if (!RunPicture(work, inks.get()))
        NoteError(work);
}

} // namespace

void ReadJpeg(Decoding* decoding)
{
    const auto work = std::make_unique<JpegWork>();
    work->decoding = decoding;
    std::rewind(decoding->file);
    ReadWith(work.get());
    jpeg_destroy_decompress(&work->jpeg);
    decoding->orientation = JpegOrientation(decoding->file);
}
