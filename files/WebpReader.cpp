#include "files/PictureDecoding.h"

#include "files/FileHeaders.h"

#include <algorithm>
#include <cstring>
#include <string>

#include <webp/decode.h>
#include <webp/mux.h>

// A WebP file is a RIFF file: a length, then pieces with lengths. The length tells a cut exactly;
// the decoder is fed piece by piece, so that it can say how far it came.

namespace
{

struct MuxDeleter
{
    void operator()(WebPMux* mux) const { WebPMuxDelete(mux); }
};

// The first frame of a file, or the only one.
struct FirstFrame
{
    WebPMuxFrameInfo frame = {};
    ~FirstFrame() { WebPDataClear(&frame.bitstream); }
};

int64_t LittleNumber(const uint8_t* bytes)
{
    return int64_t(bytes[0]) | int64_t(bytes[1]) << 8 | int64_t(bytes[2]) << 16 |
           int64_t(bytes[3]) << 24;
}

bool ReadAll(Decoding* decoding, std::vector<uint8_t>* bytes)
{
    bytes->resize(size_t(decoding->fileBytes));
    std::rewind(decoding->file);
    bytes->resize(std::fread(bytes->data(), 1, bytes->size(), decoding->file));
    return bytes->size() >= 12;
}

void TakeMetadata(Decoding* decoding, const WebPMux* mux)
{
    WebPData chunk = {};
    if (WebPMuxGetChunk(mux, "EXIF", &chunk) == WEBP_MUX_OK)
        decoding->orientation = ExifOrientation(chunk.bytes, chunk.size);
    else if (WebPMuxGetChunk(mux, "XMP ", &chunk) == WEBP_MUX_OK)
        decoding->orientation =
            XmpOrientation(std::string(reinterpret_cast<const char*>(chunk.bytes), chunk.size));
}

// Blue, green, red, alpha of a decoded picture to the pair.
void Split(Decoding* decoding, const std::vector<uint8_t>& pixels)
{
    const Picture& picture = decoding->picture;
    for (int y = 0; y < picture->height; ++y)
    {
        const uint8_t* from = pixels.data() + size_t(y) * size_t(picture->width) * 4;
        uint8_t *to = PicRow<uint8_t>(picture, y), *alpha = PicRow<uint8_t>(decoding->alpha, y);
        for (int x = 0; x < picture->width; ++x, from += 4, to += 3)
        {
            std::copy(from, from + 3, to);
            alpha[x] = from[3];
        }
    }
}

void Decode(Decoding* decoding, const WebPData& data, bool hasAlpha)
{
    const Picture& picture = decoding->picture;
    std::vector<uint8_t> four(hasAlpha ? size_t(picture->width) * size_t(picture->height) * 4 : 0);
    WebPDecoderConfig config;
    WebPInitDecoderConfig(&config);
    config.output.colorspace = hasAlpha ? MODE_BGRA : MODE_BGR;
    config.output.is_external_memory = 1;
    config.output.u.RGBA.rgba = hasAlpha ? four.data() : picture->data;
    config.output.u.RGBA.stride = hasAlpha ? 4 * picture->width : picture->stride;
    config.output.u.RGBA.size = hasAlpha ? four.size() : size_t(picture->size);
    if (decoding->options.acceptDamaged && !hasAlpha)
        CBxPicBufAPI::SetConst(decoding->picture.Record(), 0);

    WebPIDecoder* decoder = WebPIDecode(nullptr, 0, &config);
    const VP8StatusCode status =
        decoder ? WebPIUpdate(decoder, data.bytes, data.size) : VP8_STATUS_OUT_OF_MEMORY;
    int rows = 0;
    if (decoder)
        WebPIDecGetRGB(decoder, &rows, nullptr, nullptr, nullptr);
    WebPIDelete(decoder);
    if (status == VP8_STATUS_OUT_OF_MEMORY)
        Refuse(decoding, LoadProblem::OutOfMemory);
    const double share = double(rows) / picture->height;
    if (status == VP8_STATUS_SUSPENDED || status == VP8_STATUS_NOT_ENOUGH_DATA)
        NoteDamage(decoding, EndText(std::min(share, 0.99)), share);
    else if (status != VP8_STATUS_OK)
        NoteDamage(decoding, "the picture's data are broken", share);
    if (hasAlpha)
        Split(decoding, four);
}

// What stands behind the pixels may be missing without the decoder's noticing.
void CheckLength(Decoding* decoding, const std::vector<uint8_t>& bytes)
{
    if (LittleNumber(bytes.data() + 4) + 8 > int64_t(bytes.size()))
        NoteDamage(decoding, EndText(1.0), 1.0);
}

void ReadBytesOf(Decoding* decoding, const std::vector<uint8_t>& bytes)
{
    WebPData data = {bytes.data(), bytes.size()};
    const std::unique_ptr<WebPMux, MuxDeleter> mux(WebPMuxCreate(&data, 0));
    FirstFrame first;
    int frames = 1;
    if (mux)
    {
        TakeMetadata(decoding, mux.get());
        WebPMuxNumChunks(mux.get(), WEBP_CHUNK_ANMF, &frames);
        if (frames > 0 && WebPMuxGetFrame(mux.get(), 1, &first.frame) == WEBP_MUX_OK)
            data = first.frame.bitstream;
    }
    if (frames > 1)
        decoding->report.notes.push_back("the file has " + std::to_string(frames) +
                                         " frames; the first one was read");
    WebPBitstreamFeatures features;
    const VP8StatusCode status = WebPGetFeatures(data.bytes, data.size, &features);
    if (status != VP8_STATUS_OK)
        return NoteDamage(decoding,
                          status == VP8_STATUS_NOT_ENOUGH_DATA ? EndText(0.0)
                                                               : "the picture has no valid header",
                          0.0);
    PictureClaim claim;
    claim.width = features.width;
    claim.height = features.height;
    claim.alpha = features.has_alpha != 0;
    claim.decoderBytes = claim.width * claim.height * (claim.alpha ? 4 : 0) +
                         (features.format == 2 ? claim.width * claim.height * 4 : 0);
    if (MakePicture(decoding, claim))
        Decode(decoding, data, claim.alpha);
}

} // namespace

void ReadWebp(Decoding* decoding)
{
    std::vector<uint8_t> bytes;
    if (decoding->fileBytes > (int64_t(1) << 32) || !ReadAll(decoding, &bytes))
        return NoteDamage(decoding, EndText(0.0), 0.0);
    ReadBytesOf(decoding, bytes);
    if (!decoding->headerOnly)
        CheckLength(decoding, bytes);
}
