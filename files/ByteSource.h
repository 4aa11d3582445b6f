#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

// Bytes that may hold anything, in a file or in memory, of which nothing is read beyond the end.
// What is read goes by offsets from the first byte; those of a photograph within another file
// count from where that begins. The stream or the memory stays with the caller.
class ByteSource
{
public:
    explicit ByteSource(FILE* stream); // all of it
    explicit ByteSource(const std::vector<uint8_t>& memory) : m_memory(&memory) {}

    // A part of a stream, as much of it as there is.
    ByteSource Part(uint64_t start, uint64_t size) const;

    uint64_t Size() const { return m_memory ? m_memory->size() : m_size; }

    // False when not all of it is there.
    bool Read(uint64_t at, size_t count, void* to) const;

    // The same into memory that is taken when all of it is there; empty when it is not.
    std::vector<uint8_t> Bytes(uint64_t at, uint64_t count) const;

private:
    FILE* m_stream = nullptr;
    const std::vector<uint8_t>* m_memory = nullptr;
    uint64_t m_start = 0, m_size = 0; // in the stream
};

// Numbers as files have them.
uint64_t NumberAt(const uint8_t* bytes, int count, bool bigEndian);
void PutNumber(uint8_t* bytes, uint64_t value, int count, bool bigEndian);
void AppendNumber(std::vector<uint8_t>* bytes, uint64_t value, int count, bool bigEndian);

// Places of streams, beyond two gigabytes on every system too.
bool SeekStreamTo(FILE* stream, int64_t at);
int64_t StreamLength(FILE* stream); // leaves the stream at its end; -1 when that fails
