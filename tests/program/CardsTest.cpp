// SPDX-License-Identifier: MIT
// The report's address of the machine, in networks whose cards the test chooses.
#include "tests/support/OwnNetwork.h"
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(Cards, GiveTheReportItsAddress)
{
    struct Case
    {
        const char* why;
        const char* first; // addresses of two cards, none when empty
        const char* second;
        const char* wanted;
    };
    constexpr Case kCases[] = {
        {"none but the loopback", "", "", ""},
        {"only locally administered", "0a:00:00:00:00:02", "0a:00:00:00:00:01", "0A0000000001"},
        {"first byte 0", "00:11:22:33:44:55", "0a:00:00:00:00:01", "001122334455"},
        {"two equal ones", "4c:cc:6a:ab:cd:ef", "4c:cc:6a:ab:cd:ef", "4CCC6AABCDEF"},
    };
    if (!EnterOwnNetwork())
        GTEST_SKIP() << "no right to make a network namespace";
    const ProgramFolder folder;
    for (const Case& test : kCases)
    {
        if (*test.first)
        {
            const std::string pair = std::string("ip link add v0 address ") + test.first +
                                     " type veth peer name v1 address " + test.second;
            ASSERT_EQ(std::system(pair.c_str()), 0) << pair;
        }
        const std::string report = WithoutTimes(folder.Run({}).console);
        EXPECT_NE(report.find(std::string("\nMAC address: ") + test.wanted + "\n"), std::string::npos)
            << test.why << ":\n"
            << report;
        if (*test.first)
            ASSERT_EQ(std::system("ip link del v0"), 0);
    }
}
