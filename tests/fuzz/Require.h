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

inline std::string_view TextOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}
