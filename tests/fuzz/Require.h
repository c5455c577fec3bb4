// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string_view>

inline void Require(bool holds)
{
    if (!holds)
        std::abort();
}

// What the target does with each input.
static void Fuzz(std::string_view input);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz({reinterpret_cast<const char*>(data), size});
    return 0;
}
