// SPDX-License-Identifier: MIT
// Any text is a command line; whatever it gives, a switch that is there has a value, and the values lie in
// it.
#include "app/CmdLineParser.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::wstring text;
    for (std::size_t i = 0; i < size; ++i)
        text += static_cast<wchar_t>(data[i]);
    CCmdLineParser parser;
    parser.Parse(text.c_str());
    for (const wchar_t* key : {L"a", L"b", L"FTP_LOG"})
    {
        const wchar_t* value = parser.GetVal(key);
        if (parser.HasKey(key) != (value != nullptr))
            std::abort();
        if (value != nullptr && text.find(value) == std::wstring::npos)
            std::abort();
        if (parser.HasVal(key) && *value == L'\0' && text.find(L'\0') == std::wstring::npos)
            std::abort();
    }
    return 0;
}
