#pragma once

// The two filters of the fusion pyramid on packed float planes (the 5x5 generating kernel of Burt
// and Adelson). Borders do not mirror: the window is moved inside the plane, and the kernel weight
// follows the place in the moved window. Expand on an odd size therefore darkens its last three
// rows and columns; that cancels, since taking apart and putting together use the same filter.
//
// `kernel` is an outer product of two 5-tap kernels. When dst is narrower or lower than 5 samples
// nothing is written: dst keeps its zeros. Planes must not overlap; src is dst's next finer
// (reduce) or coarser (expand) level, with at least 5, or 3, samples a side. Rows are spread over
// the task pool.

// The generating kernel with a = 0.4 along one axis, and its outer product with itself: what all
// users of the filters take.
constexpr float kGeneratingTaps[5] = {0.05f, 0.25f, 0.4f, 0.25f, 0.05f};
void FillGeneratingKernel(float kernel[5][5]);

// Filter and halve: dst(i, j) from the 5x5 window at (2i - 2, 2j - 2).
void VcReduce(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
              const float kernel[5][5]);

// Double: zeros between the samples, filtered, times 4.
void VcExpand(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
              const float kernel[5][5]);

// Rows [firstRow, endRow) of the same, on the calling thread: for whoever has something to do with
// the rows while they are in the cache.
void VcReduceRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                  const float kernel[5][5], int firstRow, int endRow);
void VcExpandRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                  const float kernel[5][5], int firstRow, int endRow);
