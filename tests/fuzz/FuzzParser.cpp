// SPDX-License-Identifier: MIT
// Any text is a command line; whatever it gives, a switch that is there has a value, and the values lie in
// it.
#include "app/CmdLineParser.h"
#include "tests/fuzz/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring text(data, data + size);
    CCmdLineParser parser;
    parser.Parse(text.c_str());
    for (const wchar_t* key : {L"a", L"b", L"FTP_LOG"})
    {
        const wchar_t* value = parser.GetVal(key);
        Require(parser.HasKey(key) == (value != nullptr));
        Require(value == nullptr || text.find(value) != std::wstring::npos);
        Require(!parser.HasVal(key) || *value != L'\0' || text.find(L'\0') != std::wstring::npos);
    }
    return 0;
}
