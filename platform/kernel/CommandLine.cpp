// SPDX-License-Identifier: MIT
#include "platform/kernel/CommandLine.h"

#include "text/Unicode.h"
#include "winbase.h"

using namespace platform;

namespace
{

constexpr wchar_t kQuote = L'"';

// Where the opening quote belongs in an argument that needs quotes.
std::size_t ValueStart(const std::wstring& argument)
{
    const bool isSwitch = argument.find_first_of(L"-/") == 0;
    const std::size_t end = argument.find_first_of(L" :=");
    return isSwitch && end != std::wstring::npos && argument[end] != L' ' ? end + 1 : 0;
}

std::wstring QuoteArgument(std::wstring argument)
{
    const bool blank = argument.find_first_not_of(L" \t\r\n\v\f") == std::wstring::npos;
    if (!blank && argument.find(L' ') == std::wstring::npos)
        return argument;
    const std::size_t start = ValueStart(argument);
    if (start < argument.size() && argument[start] == kQuote)
        return argument;
    return argument.insert(start, 1, kQuote) + kQuote;
}

std::vector<std::wstring>& OwnArguments()
{
    static std::vector<std::wstring> arguments;
    return arguments;
}

// The C library hands a program's arguments to the starts of its libraries, too.
[[gnu::constructor]] void KeepArguments(int count, char** arguments)
{
    for (int i = 0; i < count; ++i)
        OwnArguments().push_back(text::FromUtf8(arguments[i]));
}

bool IsBlank(wchar_t character)
{
    return character == L' ' || character == L'\t';
}

// Takes the first word off the line.
std::wstring TakeProgram(std::wstring_view& line)
{
    std::wstring word;
    bool quoted = false;
    std::size_t at = 0;
    for (; at < line.size() && (quoted || !IsBlank(line[at])); ++at)
        if (line[at] == kQuote)
            quoted = !quoted;
        else
            word += line[at];
    line.remove_prefix(at);
    return word;
}

// Takes a further word off the line, which begins with it.
std::wstring TakeArgument(std::wstring_view& line)
{
    std::wstring word;
    bool quoted = false;
    std::size_t at = 0;
    while (at < line.size() && (quoted || !IsBlank(line[at])))
    {
        std::size_t backslashes = 0;
        while (at < line.size() && line[at] == L'\\')
        {
            ++backslashes;
            ++at;
        }
        if (at == line.size() || line[at] != kQuote)
        {
            word.append(backslashes, L'\\');
            if (backslashes == 0)
                word += line[at++];
            continue;
        }
        word.append(backslashes / 2, L'\\');
        const bool doubled = quoted && at + 1 < line.size() && line[at + 1] == kQuote;
        if (backslashes % 2 != 0 || doubled)
        {
            word += kQuote;
            at += backslashes % 2 != 0 ? 1 : 2;
        }
        else
        {
            quoted = !quoted;
            ++at;
        }
    }
    line.remove_prefix(at);
    return word;
}

} // namespace

std::wstring platform::JoinCommandLine(const std::vector<std::wstring>& arguments)
{
    std::wstring line;
    for (const std::wstring& argument : arguments)
    {
        line += line.empty() ? L"" : L" ";
        line += QuoteArgument(argument);
    }
    return line;
}

std::vector<std::wstring> platform::SplitCommandLine(std::wstring_view line)
{
    std::vector<std::wstring> words = {TakeProgram(line)};
    for (;;)
    {
        while (!line.empty() && IsBlank(line.front()))
            line.remove_prefix(1);
        if (line.empty())
            return words;
        words.push_back(TakeArgument(line));
    }
}

LPWSTR GetCommandLineW()
{
    static auto* line = new std::wstring(JoinCommandLine(OwnArguments()));
    return line->data();
}
