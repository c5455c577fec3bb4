// SPDX-License-Identifier: MIT
// Any format over values of all kinds: a bounded result, and text without braces comes through as it is.
#include "foundation/Oriska.h"
#include "tests/fuzz/Require.h"

#include <cstring>

static void Fuzz(std::string_view input)
{
    // The first eight bytes are a number in every type; the rest is the format, a byte or two a character.
    std::uint64_t number = 0;
    if (input.size() < sizeof number)
        return;
    std::memcpy(&number, input.data(), sizeof number);
    double real;
    std::memcpy(&real, input.data(), sizeof real);
    std::wstring format;
    const auto byte = [input](std::size_t i) { return static_cast<unsigned char>(input[i]); };
    for (std::size_t i = sizeof number; i < input.size(); ++i)
    {
        const bool isPair = byte(i) >= 0x80 && i + 1 < input.size();
        format += static_cast<wchar_t>(isPair ? byte(i) << 8 | byte(i + 1) : byte(i));
        i += isPair ? 1 : 0;
    }
    const std::string narrow(input);
    const ZTString text(format.c_str());

    const ZTString result =
        _StrFormat(format.c_str(), {number, static_cast<long long>(number), static_cast<int>(number), real,
                                    text, narrow.c_str(), static_cast<unsigned char>(number), L"wide"});
    const std::size_t length = std::wcslen(format.c_str());
    Require(static_cast<std::size_t>(result.GetLength()) <= (length + 1) * (1000 + input.size()));
    Require(format.find(L'{') != std::wstring::npos || result == format.c_str());
}
