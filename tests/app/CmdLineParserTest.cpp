// SPDX-License-Identifier: MIT
#include "app/CmdLineParser.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace
{

// What a lookup of a switch must find; a null value means that the switch must be absent.
struct Expected
{
    const wchar_t* key;
    const wchar_t* value;
};

struct Row
{
    const wchar_t* text;
    std::vector<Expected> expected;
    const char* why;
};

const std::vector<Row> kRows = {
    {L"", {{L"a", nullptr}}, "nothing"},
    {L"-a", {{L"a", L""}}, "a lone switch"},
    {L"-a -b", {{L"a", L""}, {L"b", L""}}, "two"},
    {L"/A:1 -b=2", {{L"a", L"1"}, {L"b", L"2"}}, "both switch characters, both separators, any case"},
    {L"-a 1", {{L"a", L"1"}}, "blank as separator"},
    {L"-a  1", {{L"a", L""}, {L"1", nullptr}}, "the value starts at the second blank and ends there"},
    {L"-a \"x y\" -b", {{L"a", L"x y"}, {L"b", L""}}, "quoted"},
    {L"-a \"\" -b", {{L"a", L""}, {L"b", L""}}, "empty quotes"},
    {L"-a:\"x y", {{L"a", L"x y"}}, "unclosed quote runs to the end"},
    {L"-a x\"y z", {{L"a", L"x\"y"}, {L"z", nullptr}}, "a quote inside a value is part of it"},
    {L"-a \"x\"y -b",
     {{L"a", L"x"}, {L"y", nullptr}, {L"b", L""}},
     "what follows a closing quote is skipped"},
    {L"-a x-y", {{L"a", L"x-y"}, {L"y", nullptr}}, "a switch character inside a value"},
    {L"-a:b:c", {{L"a", L"b:c"}}, "a separator inside a value"},
    {L"-a:-b", {{L"a", L"-b"}, {L"b", nullptr}}, "a value that looks like a switch"},
    {L"-a x -y", {{L"a", L"x"}, {L"y", L""}}, "value, then switch"},
    {L"-a 1 -a 2", {{L"a", L"1"}}, "the first one stays"},
    {L"x -a:1 y /b", {{L"a", L"1"}, {L"b", L""}, {L"y", nullptr}}, "words outside are skipped"},
    {L"a-b c", {{L"b", L"c"}, {L"a", nullptr}}, "a switch character needs no blank before it"},
    {L"--a", {{L"-a", L""}, {L"a", nullptr}}, "the second dash belongs to the key"},
    {L"-:x -b", {{L"b", L""}, {L"", nullptr}, {L"x", nullptr}}, "an empty key consumes its value"},
    {L"-", {{L"", nullptr}}, "a lone dash"},
    {L"-a -", {{L"a", L""}}, "a dash at the end"},
    {L"-a   ", {{L"a", L""}}, "trailing blanks"},
    {L"-a=", {{L"a", L""}}, "separator at the end"},
    {L"-a\tb", {{L"a\tb", L""}, {L"a", nullptr}}, "a tab is no separator"},
    {L"-a \tb", {{L"a", L"\tb"}}, "the value starts behind the blank"},
    {L"-a \t-b", {{L"a", L""}, {L"b", L""}}, "the look-ahead steps over any white space"},
    {L"-a 1\t-b 2", {{L"a", L"1\t-b"}}, "only a blank ends a value"},
    {L"\"C:\\a b\\T.exe\" -SETCONFIG \"n:v w\"", {{L"setconfig", L"n:v w"}}, "a quoted program path"},
    {L"C:\\t\\my-app\\T.exe -SETCONFIG n:v",
     {{L"app\\t.exe", L""}, {L"setconfig", L"n:v"}},
     "a switch character in the program path"},
    {L"-\u00DCber:\U0001F600 x",
     {{L"\u00FCBER", L"\U0001F600"}},
     "folding beyond ASCII, a value beyond the first plane"},
};

TEST(CmdLineParser, ReadsEveryShapeOfSwitchAndValue)
{
    for (const Row& row : kRows)
    {
        CCmdLineParser parser;
        parser.Parse(row.text);
        for (const Expected& expected : row.expected)
        {
            SCOPED_TRACE(std::string(row.why) + ": key " +
                         std::string(ZTString(expected.key).GetLength(), '*'));
            const wchar_t* value = parser.GetVal(expected.key);
            ASSERT_EQ(parser.HasKey(expected.key), expected.value != nullptr);
            ASSERT_EQ(value != nullptr, expected.value != nullptr);
            if (expected.value != nullptr)
            {
                EXPECT_STREQ(value, expected.value);
                EXPECT_EQ(parser.HasVal(expected.key), *expected.value != L'\0');
            }
        }
    }
}

TEST(CmdLineParser, ASecondTextReplacesTheFirstAndANullTextChangesNothing)
{
    CCmdLineParser parser;
    parser.Parse(L"-a 1");
    parser.Parse(nullptr);
    EXPECT_STREQ(parser.GetVal(L"A"), L"1");
    parser.Parse(L"-b");
    EXPECT_FALSE(parser.HasKey(L"a"));
    EXPECT_TRUE(parser.HasKey(L"B"));
    parser.Parse(L"");
    EXPECT_FALSE(parser.HasKey(L"b"));
}

} // namespace
