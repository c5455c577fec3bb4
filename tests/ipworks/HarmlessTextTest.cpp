// SPDX-License-Identifier: MIT
#include "libraries/ipworks/HarmlessText.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>

TEST(HarmlessText, HoldsNothingThatATerminalObeysAndNoSecret)
{
    using namespace std::string_literals;
    const std::pair<std::string, std::string> rows[] = {
        {"226 Done.\r\n", "226 Done."},
        {"\r\n", ""},
        {"a\0b\x1B[2Jc\x9B"s, "a b [2Jc\xEF\xBF\xBD"},
        {"530 Kesto-42 is wrong, Kesto-42!", "530 **** is wrong, ****!"},
        {std::string(5000, 'x'), std::string(1000, 'x') + "..."},
        {std::string(1000, 'x'), std::string(1000, 'x')},
        {std::string(999, 'x') + "\xD0\x9B", std::string(999, 'x') + "\xD0\x9B"},
        {std::string(996, 'x') + "Kesto-42", std::string(996, 'x') + "****"},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(expected, MakeHarmless(text, "Kesto-42")) << text;

    // No part of the secret shows where a long text is cut.
    for (std::size_t before = 3980; before < 4030; ++before)
    {
        // Three bytes each when shown.
        const std::string text = std::string(before, '\x9B') + Repeated("Kesto-42", 300);
        EXPECT_EQ(std::string::npos, MakeHarmless(text, "Kesto-42").find('K')) << before;
    }
    EXPECT_EQ("no secret", MakeHarmless("no secret", ""));
}
