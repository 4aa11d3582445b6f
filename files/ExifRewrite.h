#pragma once

#include "files/ResultFacts.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// The EXIF block of a photograph as it is true of a result. It keeps every byte at its offset, so
// that the notes of the camera's maker, whose offsets nobody else knows, stay right; a new first
// directory with new texts and the new thumbnail goes behind it. Of the old block only the old
// thumbnail is cleared, and the size in pixels and what belongs to the date of change is put right.
//
// `thumbnail` is a small JPEG file, empty for none. Where the whole would be longer than `limit`,
// the thumbnail goes where the old one was, or stays behind. Empty when the block is not sound,
// when nothing of it is wanted, or when it does not fit.
std::vector<uint8_t> ExifOfResult(const std::vector<uint8_t>& block, const ResultFacts& facts,
                                  const std::vector<uint8_t>& thumbnail, size_t limit);
