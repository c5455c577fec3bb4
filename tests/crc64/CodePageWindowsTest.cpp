// SPDX-License-Identifier: MIT
// The narrow sum in the code page that most machines have. Expected: the checks that xz files carry over the
// bytes that Python's codec makes of each text.
#include "crc64/TextChecksum.h"

#include <windows.h>

#include <gtest/gtest.h>

TEST(NarrowChecksum, RunsOverTheTextInTheAnsiCodePage)
{
    constexpr UINT kWesternEurope = 1252;
    if (GetACP() != kWesternEurope)
        GTEST_SKIP() << "the sums are those of code page 1252, not of " << GetACP();
    EXPECT_EQ(ChecksumOfNarrowText(L"Grüße"), 0x245027FA544AD50A);
    EXPECT_EQ(ChecksumOfNarrowText(L"€"), 0xD6C1F6E6B3E0301B);
    EXPECT_EQ(ChecksumOfNarrowText(L"привет"), 0x5C57F690707FFEDD);
    EXPECT_EQ(ChecksumOfNarrowText(L"a\U0001F600b"), 0xCEE3C3E5A51B1710);
}
