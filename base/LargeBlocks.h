#pragma once

#include <cstddef>

// Memory for pictures and planes. The first touch of fresh pages costs as much as the arithmetic
// on them, and threads wait for each other at it; a few freed blocks of a photograph's size are
// therefore kept for the next of the same size. Any thread.

// Null when memory is short. Contents are undefined unless `zeroed`.
void* VcAllocBlock(size_t bytes, bool zeroed);

// Whoever frees a block says how large it is.
void VcFreeBlock(void* block, size_t bytes);

// What VcAllocBlock and VcFreeBlock stand on.
void* SystemAllocBlock(size_t bytes, bool zeroed);
void SystemFreeBlock(void* block);
