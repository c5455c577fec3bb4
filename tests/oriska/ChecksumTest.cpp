// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include <gtest/gtest.h>

#include <string>

TEST(Checksum, AgreesWithTheChecksThatXzFilesCarry)
{
    std::string allBytes;
    for (int byte = 0; byte < 256; ++byte)
        allBytes += static_cast<char>(byte);
    const struct
    {
        std::string data;
        std::uint64_t expected;
    } kCases[] = {
        {"", 0},
        {"a", 0x330284772E652B05},
        {"123456789", 0x995DC9BBDF1939FA},
        {std::string(17, '\xFF'), 0x526C162C59060A29}, // one step of sixteen and a rest
        {"The quick brown fox jumps over the lazy dog", 0x5B5EB8C2E54AA1C4},
        {allBytes, 0x72414B2F65DB3AB0},
        {std::string(1000, '\0'), 0x372AE22BEC8A254F},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(CRC64(row.data.data(), row.data.size()), row.expected) << row.data.size() << " bytes";
    EXPECT_EQ(CRC64(nullptr, 0), 0u);
}
