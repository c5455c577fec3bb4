// SPDX-License-Identifier: MIT
// The program's resources, read back from what the compiler made, which links them on Windows too.
#include "platform/resource/Resources.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace platform;

// The .res file that tavo_resources embeds.
extern "C" const BYTE tavo_resources_begin[];
extern "C" const BYTE tavo_resources_end[];

TEST(Resources, VersionIsTheTrees)
{
    constexpr UINT kVersion = 16; // for which compiler and headers have names of different forms
    std::string bytes;
    for (const Resource& resource : ReadResFile({tavo_resources_begin, tavo_resources_end}))
        if (resource.type.Is(kVersion) && resource.name.Is(1))
            bytes.assign(resource.data.begin(), resource.data.end());
    const std::size_t signature = bytes.find("\xBD\x04\xEF\xFE");
    ASSERT_NE(signature, std::string::npos);
    WORD parts[4]; // after the signature and the structure's version: minor, major, build, patch
    std::memcpy(parts, bytes.data() + signature + 8, sizeof parts);
    EXPECT_EQ(std::to_string(parts[1]) + "." + std::to_string(parts[0]) + "." + std::to_string(parts[3]),
              TAVO_VERSION);
}
