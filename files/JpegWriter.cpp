#include "files/JpegWriter.h"

#include "files/ByteSource.h"
#include "files/MetadataContainers.h"
#include "files/XmpPacket.h"

#include <csetjmp>
#include <cstdio> // before the library's header, which needs it

#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <memory>

using Bytes = std::vector<uint8_t>;

namespace
{

struct JpegErrors
{
    jpeg_error_mgr manager;
    jmp_buf leave;
};

// The library's buffer on its way to the file, or to memory where there is no file.
struct JpegOutput
{
    jpeg_destination_mgr manager;
    WatchedFile* file;
    Bytes* memory; // taken before, since nothing may be thrown through the library
    size_t count;  // of all bytes until now
    uint8_t buffer[1 << 16];
};

} // namespace

static void LeaveEncoder(j_common_ptr jpeg)
{
    std::longjmp(reinterpret_cast<JpegErrors*>(jpeg->err)->leave, 1);
}

static void SayNothing(j_common_ptr, int) {}

static void StartBuffer(j_compress_ptr jpeg)
{
    auto* output = reinterpret_cast<JpegOutput*>(jpeg->dest);
    output->manager.next_output_byte = output->buffer;
    output->manager.free_in_buffer = sizeof output->buffer;
}

static void WriteBuffer(j_compress_ptr jpeg, size_t count)
{
    auto* output = reinterpret_cast<JpegOutput*>(jpeg->dest);
    if (output->file)
        WriteWatched(output->file, output->buffer, count);
    else if (output->count + count <= output->memory->size())
        std::copy_n(output->buffer, count, output->memory->begin() + std::ptrdiff_t(output->count));
    output->count += count;
}

static boolean BufferIsFull(j_compress_ptr jpeg)
{
    WriteBuffer(jpeg, sizeof JpegOutput::buffer);
    StartBuffer(jpeg);
    return TRUE;
}

static void WriteRest(j_compress_ptr jpeg)
{
    auto* output = reinterpret_cast<JpegOutput*>(jpeg->dest);
    WriteBuffer(jpeg, sizeof output->buffer - output->manager.free_in_buffer);
}

static const int kApplication1 = JPEG_APP0 + 1, kApplication2 = JPEG_APP0 + 2,
                 kApplication13 = JPEG_APP0 + 13;

static void PutText(Bytes* bytes, const char* text, size_t size)
{
    const size_t start = bytes->size();
    bytes->resize(start + size);
    std::copy_n(text, size, bytes->begin() + std::ptrdiff_t(start));
}

static void PutSegment(j_compress_ptr jpeg, int marker, const Bytes& segment)
{
    jpeg_write_marker(jpeg, marker, segment.data(), unsigned(segment.size()));
}

static void PutXmp(j_compress_ptr jpeg, const Bytes& xmp)
{
    Bytes main = xmp;
    std::string name;
    if (xmp.size() > kMostJpegXmp)
        main = XmpAskingFor(xmp, &name);
    Bytes segment;
    PutText(&segment, "http://ns.adobe.com/xap/1.0/\0", 29);
    segment.insert(segment.end(), main.begin(), main.end());
    PutSegment(jpeg, kApplication1, segment);
    const size_t kPiece = 65400;
    for (size_t at = 0; !name.empty() && at < xmp.size(); at += kPiece)
    {
        segment.clear();
        PutText(&segment, "http://ns.adobe.com/xmp/extension/\0", 35);
        PutText(&segment, name.data(), name.size());
        AppendNumber(&segment, xmp.size(), 4, true);
        AppendNumber(&segment, at, 4, true);
        const size_t end = std::min(at + kPiece, xmp.size());
        segment.insert(segment.end(), xmp.begin() + std::ptrdiff_t(at),
                       xmp.begin() + std::ptrdiff_t(end));
        PutSegment(jpeg, kApplication1, segment);
    }
}

static void PutPieces(j_compress_ptr jpeg, int marker, const Bytes& start, const Bytes& bytes,
                      bool numbered)
{
    const size_t kPiece = 65000, count = (bytes.size() + kPiece - 1) / kPiece;
    for (size_t i = 0; i < count; ++i)
    {
        Bytes segment = start;
        if (numbered)
            for (const size_t number : {i + 1, count})
                segment.push_back(uint8_t(number));
        const size_t end = std::min((i + 1) * kPiece, bytes.size());
        segment.insert(segment.end(), bytes.begin() + std::ptrdiff_t(i * kPiece),
                       bytes.begin() + std::ptrdiff_t(end));
        PutSegment(jpeg, marker, segment);
    }
}

static void PutMetadata(j_compress_ptr jpeg, const Metadata& metadata)
{
    Bytes segment;
    if (!metadata.exif.empty())
    {
        PutText(&segment, "Exif\0\0", 6);
        segment.insert(segment.end(), metadata.exif.begin(), metadata.exif.end());
        PutSegment(jpeg, kApplication1, segment);
    }
    if (!metadata.xmp.empty())
        PutXmp(jpeg, metadata.xmp);
    segment.clear();
    PutText(&segment, "Photoshop 3.0\0", 14);
    PutPieces(jpeg, kApplication13, segment, CaptionsAsResource(metadata.iptc), false);
    segment.clear();
    PutText(&segment, "ICC_PROFILE\0", 12);
    PutPieces(jpeg, kApplication2, segment, metadata.profile, true);
}

static void SetUp(j_compress_ptr jpeg, const PictureToWrite& job)
{
    const SBxPicBuf& picture = *job.picture;
    jpeg->image_width = JDIMENSION(picture.width);
    jpeg->image_height = JDIMENSION(picture.height);
    jpeg->input_components = picture.components;
    jpeg->in_color_space = picture.components == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
    jpeg_set_defaults(jpeg);
    jpeg_set_quality(jpeg, job.quality, TRUE);
    if (picture.components == 3)
    {
        const int kAllFrom = 90;
        const bool all = job.chroma == JpegChroma::All ||
                         (job.chroma == JpegChroma::ByQuality && job.quality >= kAllFrom);
        jpeg->comp_info[0].h_samp_factor = all ? 1 : 2;
        jpeg->comp_info[0].v_samp_factor = all || job.chroma == JpegChroma::Half ? 1 : 2;
    }
    const auto density = [](double dots)
    { return UINT16(std::lround(dots >= 1 && dots < 65535 ? dots : kDefaultDotsPerInch)); };
    jpeg->density_unit = 1;
    jpeg->X_density = density(job.metadata->dotsPerInchX);
    jpeg->Y_density = density(job.metadata->dotsPerInchY);
}

static void EncodeRows(j_compress_ptr jpeg, const PictureToWrite& job, bool withMetadata)
{
    jpeg_start_compress(jpeg, TRUE);
    if (withMetadata)
        PutMetadata(jpeg, *job.metadata);
    while (jpeg->next_scanline < jpeg->image_height)
    {
        JSAMPROW row = PicRow<uint8_t>(*job.picture, int(jpeg->next_scanline));
        jpeg_write_scanlines(jpeg, &row, 1);
    }
    jpeg_finish_compress(jpeg);
}

// Nothing with a destructor lives here while the library works, since it leaves by a long jump.
static bool Encode(JpegOutput* output, const PictureToWrite& job, bool withMetadata)
{
    jpeg_compress_struct jpeg;
    JpegErrors errors;
    jpeg.err = jpeg_std_error(&errors.manager);
    errors.manager.error_exit = LeaveEncoder;
    errors.manager.emit_message = SayNothing;
    if (setjmp(errors.leave))
    {
        jpeg_destroy_compress(&jpeg);
        return false;
    }
    jpeg_create_compress(&jpeg);
    output->manager.init_destination = StartBuffer;
    output->manager.empty_output_buffer = BufferIsFull;
    output->manager.term_destination = WriteRest;
    jpeg.dest = &output->manager;
    SetUp(&jpeg, job);
    try // short memory
    {
        EncodeRows(&jpeg, job, withMetadata);
    }
    catch (...)
    {
        jpeg_destroy_compress(&jpeg);
        throw;
    }
    jpeg_destroy_compress(&jpeg);
    return true;
}

bool WriteJpeg(WatchedFile* file, const PictureToWrite& job)
{
    const auto output = std::make_unique<JpegOutput>();
    output->file = file;
    output->count = 0;
    return Encode(output.get(), job, true);
}

Bytes SmallJpeg(const SBxPicBuf& picture)
{
    const Metadata none;
    PictureToWrite job;
    job.picture = &picture;
    job.metadata = &none;
    job.quality = 80;
    const size_t kMostBytes = 60000; // no longer one would go into a JPEG file
    Bytes memory(kMostBytes);
    const auto output = std::make_unique<JpegOutput>();
    output->file = nullptr;
    output->memory = &memory;
    output->count = 0;
    const bool done = Encode(output.get(), job, false) && output->count <= kMostBytes;
    memory.resize(done ? output->count : 0);
    return memory;
}
