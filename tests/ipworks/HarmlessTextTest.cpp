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
        {"\n", ""},
        {"a\0b\x1B[2Jc\x9B"s, "a b [2Jc\xEF\xBF\xBD"},
        {"Kesto-42 is wrong, Kesto-42!", "**** is wrong, ****!"},
        {std::string(5000, 'x'), std::string(1000, 'x') + "..."},
        {std::string(1001, 'x'), std::string(1000, 'x') + "..."},
        {std::string(1000, 'x'), std::string(1000, 'x')},
        {std::string(999, 'x') + "\xD0\x9B", std::string(999, 'x') + "\xD0\x9B"},
        {std::string(996, 'x') + "Kesto-42", std::string(996, 'x') + "****"},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(expected, MakeHarmless(text, "Kesto-42")) << text;

    // No part of the secret shows where a long text is cut.
    const std::string secret(100, 'K');
    for (std::size_t before = 0; before < secret.size(); ++before)
    {
        const std::string text = std::string(before, 'x') + Repeated(secret, 300);
        EXPECT_EQ(std::string::npos, MakeHarmless(text, secret).find('K')) << before;
    }
    EXPECT_EQ("no secret", MakeHarmless("no secret", ""));
}
