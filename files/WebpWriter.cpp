#include "files/WebpWriter.h"

#include "files/ByteSource.h"

#include <webp/encode.h>

#include <algorithm>
#include <cstring>
#include <memory>

using Bytes = std::vector<uint8_t>;

// The encoder makes a file of the picture alone; its chunks are then taken into a file with those
// of the metadata around them, in the order that the format wants.

static Bytes WithAlpha(const PictureToWrite& job)
{
    const SBxPicBuf& picture = *job.picture;
    Bytes samples;
    samples.reserve(size_t(picture.width) * size_t(picture.height) * 4);
    for (int y = 0; y < picture.height; ++y)
    {
        const uint8_t* src = PicRow<uint8_t>(picture, y);
        const uint8_t* alpha = PicRow<uint8_t>(*job.alpha, y);
        for (int x = 0; x < picture.width; ++x)
            samples.insert(samples.end(), {src[3 * x], src[3 * x + 1], src[3 * x + 2], alpha[x]});
    }
    return samples;
}

static bool EncodePixels(const PictureToWrite& job, WebPMemoryWriter* writer)
{
    WebPConfig config;
    WebPPicture webp;
    if (!WebPConfigInit(&config) || !WebPPictureInit(&webp))
        return false;
    config.method = 6; // the smallest files
    webp.width = job.picture->width;
    webp.height = job.picture->height;
    webp.writer = WebPMemoryWrite;
    webp.custom_ptr = writer;
    bool done = false;
    if (job.alpha)
    {
        const Bytes samples = WithAlpha(job);
        done = WebPPictureImportBGRA(&webp, samples.data(), job.picture->width * 4) != 0;
    }
    else
        done = WebPPictureImportBGR(&webp, job.picture->data, job.picture->stride) != 0;
    done = done && WebPEncode(&config, &webp) != 0;
    WebPPictureFree(&webp);
    return done;
}

static void PutChunk(Bytes* out, const char* type, const Bytes& chunk)
{
    if (chunk.empty())
        return;
    out->insert(out->end(), type, type + 4);
    AppendNumber(out, chunk.size(), 4, false);
    out->insert(out->end(), chunk.begin(), chunk.end());
    out->resize(out->size() + out->size() % 2);
}

// The chunks of the picture: its alpha plane, if it has one, and its samples.
static Bytes PixelChunks(const Bytes& encoded, bool* alpha)
{
    const ByteSource source(encoded);
    Bytes chunks;
    uint8_t head[8];
    for (uint64_t at = 12; source.Read(at, sizeof head, head);)
    {
        const uint64_t length = NumberAt(head + 4, 4, false);
        const uint64_t whole = 8 + length + length % 2;
        *alpha = *alpha || std::memcmp(head, "ALPH", 4) == 0 || std::memcmp(head, "VP8L", 4) == 0;
        const Bytes chunk = std::memcmp(head, "VP8X", 4) ? source.Bytes(at, whole) : Bytes();
        chunks.insert(chunks.end(), chunk.begin(), chunk.end());
        at += whole;
    }
    return chunks;
}

static Bytes WithMetadata(const Bytes& encoded, const PictureToWrite& job)
{
    const Metadata& metadata = *job.metadata;
    const uint8_t kProfile = 32, kAlpha = 16, kExif = 8, kXmp = 4;
    bool alpha = false;
    const Bytes pixels = PixelChunks(encoded, &alpha);
    Bytes header(4);
    header[0] = uint8_t((metadata.profile.empty() ? 0 : kProfile) | (alpha ? kAlpha : 0) |
                        (metadata.exif.empty() ? 0 : kExif) | (metadata.xmp.empty() ? 0 : kXmp));
    AppendNumber(&header, uint64_t(job.picture->width - 1), 3, false);
    AppendNumber(&header, uint64_t(job.picture->height - 1), 3, false);
    Bytes body = {'W', 'E', 'B', 'P'};
    PutChunk(&body, "VP8X", header);
    PutChunk(&body, "ICCP", metadata.profile);
    body.insert(body.end(), pixels.begin(), pixels.end());
    PutChunk(&body, "EXIF", metadata.exif);
    PutChunk(&body, "XMP ", metadata.xmp);
    Bytes out;
    PutChunk(&out, "RIFF", body);
    return out;
}

bool WriteWebp(WatchedFile* file, const PictureToWrite& job)
{
    WebPMemoryWriter writer;
    WebPMemoryWriterInit(&writer);
    const std::unique_ptr<WebPMemoryWriter, void (*)(WebPMemoryWriter*)> owner(
        &writer, WebPMemoryWriterClear);
    if (!EncodePixels(job, &writer))
        return false;
    Bytes encoded(writer.mem, writer.mem + writer.size);
    const Metadata& metadata = *job.metadata;
    if (!metadata.profile.empty() || !metadata.exif.empty() || !metadata.xmp.empty())
        encoded = WithMetadata(encoded, job);
    WriteWatched(file, encoded.data(), encoded.size());
    return true;
}
