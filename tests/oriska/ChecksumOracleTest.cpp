// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include <gtest/gtest.h>
#include <lzma.h>

#include <random>
#include <vector>

// Every length around the steps of the table and every alignment: the places where a sliced loop goes wrong.
TEST(Checksum, AgreesWithLiblzmaAtEveryLengthAndAlignment)
{
    std::mt19937 random(1);
    std::vector<unsigned char> bytes(4096);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random());
    for (std::size_t first = 0; first < 17; ++first)
        for (std::size_t length = 0; length < 600; ++length)
            ASSERT_EQ(CRC64(&bytes[first], length), lzma_crc64(&bytes[first], length, 0))
                << length << " bytes from byte " << first;
    EXPECT_EQ(CRC64(bytes.data(), bytes.size()), lzma_crc64(bytes.data(), bytes.size(), 0));
}
