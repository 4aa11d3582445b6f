#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// What libFuzzer and ReplayMain.cpp call with bytes of any kind. Each program holds one.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// A broken promise ends the process, which both take for a finding.
inline void Promise(bool kept)
{
    if (!kept)
        std::abort();
}
