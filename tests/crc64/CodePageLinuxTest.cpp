// SPDX-License-Identifier: MIT
// The narrow sum in the character sets of users' locales. Expected: the checks that xz files carry over the
// bytes that Python's codecs make of each text, with one "?" for each UTF-16 unit that the set lacks.
#include "crc64/TextChecksum.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(NarrowChecksum, RunsOverTheTextInTheCharacterSetOfTheUsersLocale)
{
    const struct
    {
        const char* locale;
        const wchar_t* text;
        std::uint64_t expected;
    } kCases[] = {
        {"en_US.UTF-8", L"Grüße", 0x5B9BCDE6F84F41C4},
        {"C.UTF-8", L"привет", 0x23E2F31381CB10F4},
        {"ja_JP.UTF-8", L"日本語", 0x291E23D7CFD1EA6E},
        {"en_US.utf8", L"a\U0001F600b", 0xA49BB3863C78E673},
        {"de_DE.ISO-8859-1", L"Grüße", 0x245027FA544AD50A},
        {"de_DE.ISO-8859-15@euro", L"€", 0x56267712EE09A2BA},
        {"ru_RU.KOI8-R", L"привет", 0xBC94D537BC4171E4},
        {"ja_JP.eucJP", L"日本語", 0xFBBDA4195C72E872},
        {"de_DE.ISO-8859-1", L"a\U0001F600b", 0xCEE3C3E5A51B1710},
        {"de_DE.ISO-8859-1", L"привет", 0x5C57F690707FFEDD},
        {"C", L"Grüße", 0xA6BAF3D55643FF20},
        {"ru_RU.KOI8-R", L"123456789", 0x995DC9BBDF1939FA},
    };
    const char* const inherited = std::getenv("LC_ALL");
    const std::string before = inherited ? inherited : "";
    for (const auto& row : kCases)
    {
        setenv("LC_ALL", row.locale, 1);
        EXPECT_EQ(ChecksumOfNarrowText(row.text), row.expected)
            << row.locale << ' ' << testing::PrintToString(row.text);
    }
    inherited ? setenv("LC_ALL", before.c_str(), 1) : unsetenv("LC_ALL");
}
