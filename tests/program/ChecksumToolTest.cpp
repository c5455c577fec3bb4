// SPDX-License-Identifier: MIT
// The checksum tool of the program that ships. The expected sums are the checks that xz files carry over the
// bytes that Python's codecs make of each text.
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::EndsWith;

TEST(ChecksumTool, IsUsedFromTheTerminal)
{
    if (RunsOnWindows())
        GTEST_SKIP() << "there is no terminal display";
    std::string tenMegabytes;
    for (int i = 0; i < 1'000'000; ++i)
        tenMegabytes += "0123456789";
    const ProgramFolder folder;
    const ProgramOutcome outcome =
        folder.Run({{},
                    {"CRC64", "Input=a\U0001F600b", "Get CRC64", "Wide characters=off", "get",
                     "1018=" + tenMegabytes, "Get", "Wide=on", "1019", "OK", "Close"},
                    {{"LC_ALL", "C.UTF-8"}}});
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.console, EndsWith("\nDialog\nInput: \nWide characters: on\nCRC64: \nCRC64 Hex: \n"
                                          "CRC64: 3752509983267961028\nCRC64 Hex: 341397F2B8CB38C4\n"
                                          "Wide characters: off\n"
                                          "CRC64: 11861271432731879027\nCRC64 Hex: A49BB3863C78E673\n"
                                          "CRC64: 3150595651663357916\nCRC64 Hex: 2BB92A0D7848E7DC\n"
                                          "Wide characters: on\n"
                                          "CRC64: 10020724681758153422\nCRC64 Hex: 8B10C401882F1ACE\n"));
}
