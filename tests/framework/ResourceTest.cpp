// SPDX-License-Identifier: MIT
// The program's resources, read back from what the resource compiler made: the texts and the version. The
// same compiler links the same bytes into the Windows program.
#include "platform/resource/Resources.h"
#include "resources/resource.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace platform;

// The .res file that tavo_resources embeds.
extern "C" const BYTE tavo_resources_begin[];
extern "C" const BYTE tavo_resources_end[];

namespace
{

constexpr UINT kVersion = 16; // for which compiler and headers have names of different forms

Bytes FindBytes(UINT type, UINT id)
{
    for (const Resource& resource : ReadResFile({tavo_resources_begin, tavo_resources_end}))
        if (resource.type.Is(type) && resource.name.Is(id))
            return resource.data;
    return {};
}

std::wstring LoadText(UINT id, int room = 200)
{
    wchar_t text[200] = {};
    const int length = LoadStringW(nullptr, id, text, room);
    EXPECT_EQ(static_cast<std::size_t>(length), std::wcslen(text));
    return text;
}

} // namespace

TEST(Resources, Texts)
{
    EXPECT_EQ(LoadText(IDS_ADMINISTRATOR_TEXT, 5), L"This");
    EXPECT_EQ(LoadText(132), L"") << "the next one of the block";
    EXPECT_EQ(LoadText(4711), L"");
}

TEST(Resources, VersionIsTheTrees)
{
    const Bytes version = FindBytes(kVersion, 1);
    const std::string bytes(version.begin(), version.end());
    const std::size_t signature = bytes.find("\xBD\x04\xEF\xFE");
    ASSERT_NE(signature, std::string::npos);
    WORD parts[4]; // after the signature and the structure's version: minor, major, build, patch
    std::memcpy(parts, bytes.data() + signature + 8, sizeof parts);
    EXPECT_EQ(std::to_string(parts[1]) + "." + std::to_string(parts[0]) + "." + std::to_string(parts[3]),
              TAVO_VERSION);
}
