// SPDX-License-Identifier: MIT
// Any format over values of all kinds: a bounded result, and text without braces comes through as it is.
#include "foundation/Oriska.h"
#include "tests/fuzz/Require.h"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The first eight bytes are a number in every type; the rest is the format, a byte or two a character.
    std::uint64_t number = 0;
    if (size < sizeof number)
        return 0;
    std::memcpy(&number, data, sizeof number);
    double real;
    std::memcpy(&real, data, sizeof real);
    std::wstring format;
    for (std::size_t i = sizeof number; i < size; ++i)
    {
        const bool isPair = data[i] >= 0x80 && i + 1 < size;
        format += static_cast<wchar_t>(isPair ? data[i] << 8 | data[i + 1] : data[i]);
        i += isPair ? 1 : 0;
    }
    const std::string narrow(TextOf(data, size));
    const ZTString text(format.c_str());

    const ZTString result =
        _StrFormat(format.c_str(), {number, static_cast<long long>(number), static_cast<int>(number), real,
                                    text, narrow.c_str(), static_cast<unsigned char>(number), L"wide"});
    const std::size_t length = std::wcslen(format.c_str());
    Require(static_cast<std::size_t>(result.GetLength()) <= (length + 1) * (1000 + size));
    Require(format.find(L'{') != std::wstring::npos || result == format.c_str());
    return 0;
}
