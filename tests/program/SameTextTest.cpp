// SPDX-License-Identifier: MIT
// Both programs on one machine: their reports say the same, save for what the systems know differently.
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>

// A line whose values are not compared, and why.
const std::pair<std::regex, const char*> kDifferences[] = {
    {std::regex("(Current Computer: ).*"),
     "the Windows side asks for the NetBIOS name, in capitals, cut to 15"},
    {std::regex("(Current .* time.*: ).*"), "\"%c\" belongs to the C runtime, and the clock moves on"},
    {std::regex("(Daylight Bias: ).*"), "the Windows side here gives one to a zone without daylight time"},
    {std::regex("(Timezone .* Name: ).*"), "each system has zone names of its own"},
    {std::regex("(MAC log: ).*"), "the sizes of the adapter records differ"},
    {std::regex("(.* default locale: ).*"), "the prefix has a registry of its own"},
};

static std::vector<std::string> Compared(const std::string& console)
{
    std::vector<std::string> lines;
    for (std::string line : Lines(WithoutTimes(console)))
    {
        std::erase(line, '\r');
        for (const auto& [values, why] : kDifferences)
            line = std::regex_replace(line, values, "$1");
        if (line.find("Current Computer") != std::string::npos)
            lines.clear(); // what stands above the report is how a display shows a dialog
        lines.push_back(line);
    }
    return lines;
}

TEST(SameText, BothProgramsReportTheSameOfOneMachine)
{
    const std::string windows = TAVO_SOURCE_DIR "/build-windows/tests/show_console.exe";
    if (!std::ifstream(windows))
        GTEST_SKIP() << "the Windows program is not built";
    const std::vector<std::string> there = Compared(Said(TAVO_SOURCE_DIR "/scripts/wine-run " + windows));
    const std::vector<std::string> here = Compared(Said(TAVO_TEST_DIR "/show_console"));
    ASSERT_GT(here.size(), 20u);
    EXPECT_EQ(here, there);
}
