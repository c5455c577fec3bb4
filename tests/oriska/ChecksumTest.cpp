// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include <gtest/gtest.h>

#include <array>

// The definition, a bit at a time: the polynomial of ECMA-182, reflected, all ones before and after.
static std::uint64_t BitByBit(const unsigned char* bytes, std::size_t count)
{
    std::uint64_t remainder = ~std::uint64_t{0};
    for (std::size_t i = 0; i < count; ++i)
    {
        remainder ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            remainder = remainder >> 1 ^ (remainder & 1 ? 0xC96C5795D7870F42 : 0);
    }
    return ~remainder;
}

// Every length around the steps of the table and every alignment: the places where a sliced loop goes wrong.
TEST(Checksum, AgreesWithItsDefinitionAtEveryLengthAndAlignment)
{
    std::array<unsigned char, 80> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i * 151 + 7);
    for (std::size_t first = 0; first < 17; ++first)
        for (std::size_t length = 0; first + length <= bytes.size(); ++length)
            ASSERT_EQ(CRC64(&bytes[first], length), BitByBit(&bytes[first], length))
                << length << " from " << first;
    EXPECT_EQ(CRC64(nullptr, 0), 0u);
}
