// SPDX-License-Identifier: MIT
// Any arguments, put together to a line and split again: neither crashes, the quotes around a whole argument
// hold it together, and no character but quotes comes or goes.
#include "platform/kernel/CommandLine.h"
#include "platform/kernel/Text.h"

#include <algorithm>
#include <cstdlib>

namespace
{

std::wstring WithoutQuotes(std::wstring text)
{
    std::erase(text, L'"');
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const std::wstring text = WideFromSystem({reinterpret_cast<const char*>(data), size});
    if (SystemFromWide(text) != std::string_view(reinterpret_cast<const char*>(data), size))
    {
        std::abort();
    }
    std::vector<std::wstring> arguments(1);
    std::wstring expected;
    for (const wchar_t character : text)
    {
        if (character == L'\n')
        {
            arguments.emplace_back();
        }
        else
        {
            arguments.back() += character;
        }
    }
    for (const std::wstring& argument : arguments)
    {
        expected += expected.empty() && &argument == arguments.data() ? L"" : L" ";
        expected += WithoutQuotes(argument);
    }
    const std::wstring line = JoinCommandLine(arguments);
    if (WithoutQuotes(line) != expected)
    {
        std::abort();
    }
    const bool plain = text.find_first_of(L"\"\\\t") == std::wstring::npos;
    const std::vector<std::wstring> words = SplitCommandLine(line);
    SplitCommandLine(text);
    // Where the arguments bring no quotes of their own, splitting finds them again.
    if (plain && words != arguments)
    {
        std::abort();
    }
    return 0;
}
