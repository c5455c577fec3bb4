// SPDX-License-Identifier: MIT
// The sums of texts; the tests of the program at a script show their dialog. The expected sums are the checks
// that xz files carry over the bytes that Python's codecs make of each text.
#include "crc64/TextChecksum.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>

TEST(WideChecksum, RunsOverUtf16OnBothSystems)
{
    EXPECT_EQ(ChecksumOfWideText(L"a\U0001F600b"), 0x341397F2B8CB38C4);
}

// One "?" stands for each UTF-16 unit that the user's character set lacks.
TEST(NarrowChecksum, RunsOverTheTextInTheCharacterSetOfTheUser)
{
    const Variable locale("LC_ALL", "de_DE.ISO-8859-1"); // Windows programs go by the machine's code page
    char narrow = 0;
    WideCharToMultiByte(CP_ACP, 0, L"\u00FC", 1, &narrow, 1, nullptr, nullptr);
    if (narrow != '\xFC')
        GTEST_SKIP() << "the sums are those of Western Europe's character sets";
    EXPECT_EQ(ChecksumOfNarrowText(L"Grüße"), 0x245027FA544AD50A);
    EXPECT_EQ(ChecksumOfNarrowText(L"привет"), 0x5C57F690707FFEDD);
    EXPECT_EQ(ChecksumOfNarrowText(L"a\U0001F600b"), 0xCEE3C3E5A51B1710);
}
