#include "picture/FloatPlane.h"

#include <cstdlib>

float* VcAllocPlane(int64_t samples)
{
    return static_cast<float*>(std::calloc(size_t(samples), sizeof(float)));
}

void VcFreePlane(float* plane)
{
    std::free(plane);
}
