#include "files/ByteSource.h"

#include <algorithm>
#include <cstring>

bool SeekStreamTo(FILE* stream, int64_t at)
{
#ifdef _WIN32
    return _fseeki64(stream, at, SEEK_SET) == 0;
#else
    return fseeko(stream, off_t(at), SEEK_SET) == 0;
#endif
}

int64_t StreamLength(FILE* stream)
{
#ifdef _WIN32
    return _fseeki64(stream, 0, SEEK_END) == 0 ? _ftelli64(stream) : -1;
#else
    return fseeko(stream, 0, SEEK_END) == 0 ? int64_t(ftello(stream)) : -1;
#endif
}

ByteSource::ByteSource(FILE* stream) : m_stream(stream)
{
    m_size = uint64_t(std::max<int64_t>(StreamLength(stream), 0));
}

ByteSource ByteSource::Part(uint64_t start, uint64_t size) const
{
    ByteSource part = *this;
    part.m_start = m_start + std::min(start, m_size);
    part.m_size = std::min(size, m_size - std::min(start, m_size));
    return part;
}

bool ByteSource::Read(uint64_t at, size_t count, void* to) const
{
    if (at > Size() || count > Size() - at)
        return false;
    if (count == 0)
        return true;
    if (m_memory)
    {
        std::memcpy(to, m_memory->data() + at, count);
        return true;
    }
    return SeekStreamTo(m_stream, int64_t(m_start + at)) && std::fread(to, count, 1, m_stream) == 1;
}

std::vector<uint8_t> ByteSource::Bytes(uint64_t at, uint64_t count) const
{
    std::vector<uint8_t> bytes;
    if (at > Size() || count > Size() - at)
        return bytes;
    bytes.resize(size_t(count));
    if (!Read(at, bytes.size(), bytes.data()))
        bytes.clear();
    return bytes;
}

uint64_t NumberAt(const uint8_t* bytes, int count, bool bigEndian)
{
    uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 8 | bytes[bigEndian ? i : count - 1 - i];
    return value;
}

void PutNumber(uint8_t* bytes, uint64_t value, int count, bool bigEndian)
{
    for (int i = 0; i < count; ++i)
        bytes[bigEndian ? count - 1 - i : i] = uint8_t(value >> (8 * i));
}

void AppendNumber(std::vector<uint8_t>* bytes, uint64_t value, int count, bool bigEndian)
{
    bytes->resize(bytes->size() + size_t(count));
    PutNumber(bytes->data() + bytes->size() - count, value, count, bigEndian);
}
