// SPDX-License-Identifier: MIT
#include "app/CmdLineParser.h"
#include "foundation/Kelvane.h"

#include <gtest/gtest.h>

using Values = std::map<std::wstring, std::wstring>;

const std::vector<std::tuple<const wchar_t*, Values, const char*>> kRows = {
    {L"-a -b", {{L"a", L""}, {L"b", L""}}, "two"},
    {L"/A:1 -b=2", {{L"a", L"1"}, {L"b", L"2"}}, "both switch characters, both separators, any case"},
    {L"-a  1", {{L"a", L""}}, "the value starts at the second blank and ends there"},
    {L"-a \"x y\" -b", {{L"a", L"x y"}, {L"b", L""}}, "quoted"},
    {L"-a \"\" -b", {{L"a", L""}, {L"b", L""}}, "empty quotes"},
    {L"-a:\"x y", {{L"a", L"x y"}}, "unclosed quote runs to the end"},
    {L"-a x\"y z", {{L"a", L"x\"y"}}, "a quote inside a value is part of it"},
    {L"-a \"x-\"y -b", {{L"a", L"x-"}, {L"b", L""}}, "what follows a closing quote is skipped"},
    {L"-a x-y", {{L"a", L"x-y"}}, "a switch character inside a value"},
    {L"-a:b:c", {{L"a", L"b:c"}}, "a separator inside a value"},
    {L"-a:-b", {{L"a", L"-b"}}, "a value that looks like a switch"},
    {L"-a 1 -a 2", {{L"a", L"1"}}, "the first one stays"},
    {L"x -a:1 y /b", {{L"a", L"1"}, {L"b", L""}}, "words outside are skipped"},
    {L"a-b c", {{L"b", L"c"}}, "a switch character needs no blank before it"},
    {L"--a", {{L"-a", L""}}, "the second dash belongs to the key"},
    {L"-:x -b", {{L"b", L""}}, "an empty key consumes its value"},
    {L"-a -", {{L"a", L""}}, "a dash at the end"},
    {L"- -b", {{L"b", L""}}, "a dash alone"},
    {L"-a- -b", {{L"a-", L""}, {L"b", L""}}, "a dash that ends a key"},
    {L"-a   ", {{L"a", L""}}, "trailing blanks"},
    {L"-a=", {{L"a", L""}}, "separator at the end"},
    {L"-a\tb", {{L"a\tb", L""}}, "a tab is not a separator"},
    {L"-a \tb", {{L"a", L"\tb"}}, "the value starts after the blank"},
    {L"-a \t-b", {{L"a", L""}, {L"b", L""}}, "the look-ahead steps over any white space"},
    {L"-a 1\t-b 2", {{L"a", L"1\t-b"}}, "only a blank ends a value"},
    {L"\"C:\\a b\\T.exe\" -SETCONFIG \"n:v w\"", {{L"setconfig", L"n:v w"}}, "a quoted program path"},
    {L"C:\\my-app\\T -a:v", {{L"app\\t", L""}, {L"a", L"v"}}, "a switch character in the program path"},
    {L"-Über:😀 x", {{L"über", L"😀"}}, "folding beyond ASCII, a value beyond the first plane"},
};

// All that the parser holds: a key is a part of the text, and counts in any case.
static Values ValuesOf(const CCmdLineParser& parser, const std::wstring& text)
{
    Values values;
    for (std::size_t start = 0; start <= text.size(); ++start)
        for (std::size_t length = 0; length <= text.size() - start; ++length)
        {
            const std::wstring key = text.substr(start, length);
            const wchar_t* value = parser.GetVal(key.c_str());
            EXPECT_EQ(parser.HasKey(key.c_str()), value != nullptr) << StrConverter(key.c_str());
            EXPECT_EQ(parser.HasVal(key.c_str()), value != nullptr && *value != L'\0')
                << StrConverter(key.c_str());
            if (value != nullptr)
                values.emplace(ZTString(key.c_str()).MakeLower().GetString(), value);
        }
    return values;
}

TEST(CmdLineParser, ReadsEveryShapeOfSwitchAndValueInThePlaceOfTheTextBefore)
{
    CCmdLineParser parser;
    for (const auto& [text, expected, why] : kRows)
    {
        parser.Parse(text);
        parser.Parse(nullptr); // changes nothing
        EXPECT_EQ(ValuesOf(parser, text), expected) << why;
    }
    parser.Parse(L"");
    EXPECT_EQ(ValuesOf(parser, std::get<0>(kRows.back())), Values());
}
