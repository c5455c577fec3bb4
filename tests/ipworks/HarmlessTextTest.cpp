// SPDX-License-Identifier: MIT
#include "libraries/ipworks/HarmlessText.h"

#include <gtest/gtest.h>

TEST(HarmlessText, HoldsNothingThatATerminalObeysAndNoSecret)
{
    using namespace std::string_literals;
    const struct
    {
        std::string text;
        std::string expected;
    } rows[] = {
        {"226 Done.\r\n", "226 Done."},
        {"", ""},
        {"\r\n", ""},
        {"a\0b\x1B[2Jc\x7F"
         "d\te\rf"s,
         "a b [2Jc d e f"},
        {"\xC2\x9B"
         "31m red",
         " 31m red"}, // CSI as a C1 control
        {"\x9B"
         "31m",
         "?31m"}, // and as a single byte
        {"abc\xE2\x80\xAE"
         "fed",
         "abc fed"}, // right-to-left override
        {"\xD0\x9B\xE6\x97\xA5\xF0\x9F\x98\x80", "\xD0\x9B\xE6\x97\xA5\xF0\x9F\x98\x80"},
        {"\xC0\xAF", "??"},           // overlong
        {"\xED\xA0\x80", "???"},      // a surrogate
        {"\xF4\x90\x80\x80", "????"}, // beyond the last character
        {"\xE6\x97", "??"},           // cut in the middle
        {"530 Kesto-42 is wrong, Kesto-42!", "530 **** is wrong, ****!"},
        {std::string(5000, 'x'), std::string(1000, 'x') + "..."},
        {std::string(1000, 'x'), std::string(1000, 'x')},
        {std::string(999, 'x') + "\xD0\x9B", std::string(999, 'x') + "..."},
        {std::string(996, 'x') + "Kesto-42", std::string(996, 'x') + "****"},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(expected, MakeHarmless(text, "Kesto-42")) << text;

    // No part of the secret shows where a long text is cut.
    for (std::size_t before = 980; before < 1030; ++before)
    {
        std::string text(before, 'x');
        for (int i = 0; i < 300; ++i)
            text += "Kesto-42";
        EXPECT_EQ(std::string::npos, MakeHarmless(text, "Kesto-42").find('K')) << before;
        EXPECT_EQ(std::string::npos, MakeHarmless(text.substr(before), "Kesto-42").find('K')) << before;
    }
    EXPECT_EQ("no secret", MakeHarmless("no secret", ""));
}
