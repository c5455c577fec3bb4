// SPDX-License-Identifier: MIT
// Any arguments, put together to a line and split again: the quotes around a whole argument hold it together,
// and no character but quotes comes or goes. The same text as one command line: a value lies in it.
#include "app/CmdLineParser.h"
#include "platform/kernel/CommandLine.h"
#include "tests/fuzz/Require.h"
#include "text/Unicode.h"

using namespace platform;

static std::wstring WithoutQuotes(std::wstring text)
{
    std::erase(text, L'"');
    return text;
}

static void Fuzz(std::string_view input)
{
    const std::wstring text = text::FromUtf8(input);
    std::vector<std::wstring> arguments(1);
    for (const wchar_t character : text)
        if (character == L'\n')
            arguments.emplace_back();
        else
            arguments.back() += character;
    std::wstring expected = WithoutQuotes(arguments.front());
    for (std::size_t index = 1; index < arguments.size(); ++index)
        expected += L" " + WithoutQuotes(arguments[index]);
    const std::wstring line = JoinCommandLine(arguments);
    Require(WithoutQuotes(line) == expected);
    SplitCommandLine(text);
    // Where the arguments bring no quotes of their own, splitting finds them again.
    const bool plain = text.find_first_of(L"\"\\\t") == std::wstring::npos;
    Require(SplitCommandLine(line) == arguments || !plain);

    CCmdLineParser parser;
    parser.Parse(text.c_str());
    for (const wchar_t* key : {L"a", L"b", L"FTP_LOG"})
    {
        const wchar_t* value = parser.GetVal(key);
        Require(parser.HasKey(key) == (value != nullptr));
        Require(value == nullptr || text.find(value) != std::wstring::npos);
        Require(parser.HasVal(key) == (value != nullptr && *value != L'\0'));
    }
}
