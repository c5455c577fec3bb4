// SPDX-License-Identifier: MIT
#include "crc64/TextChecksum.h"

#include "text/Unicode.h"

#include <windows.h>

#include <bit>
#include <cstring>
#include <string>

std::uint64_t ChecksumOfWideText(const ZTString& text)
{
    static_assert(std::endian::native == std::endian::little);
    const std::u16string units = text::ToUtf16(text.AsView());
    return CRC64(units.data(), units.size() * sizeof(char16_t));
}

std::uint64_t ChecksumOfNarrowText(const ZTString& text)
{
    constexpr int kWithTerminator = -1;
    const int size = WideCharToMultiByte(CP_ACP, 0, text, kWithTerminator, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, text, kWithTerminator, bytes.data(), size, nullptr, nullptr);
    return CRC64(bytes.data(), std::strlen(bytes.c_str()));
}
