// SPDX-License-Identifier: MIT
#include "libraries/ipworks/NativePath.h"

std::filesystem::path NativePath(const std::wstring& text)
{
    std::string bytes;
    const auto append = [&bytes](wchar_t bits) { bytes += static_cast<char>(bits); };
    for (const wchar_t c : text)
    {
        if (c < 0x80 || (c >= 0xDC80 && c <= 0xDCFF))
            append(c & 0xFF);
        else if (c < 0x800)
        {
            append(0xC0 | (c >> 6));
            append(0x80 | (c & 0x3F));
        }
        else if (c < 0x10000)
        {
            append(0xE0 | (c >> 12));
            append(0x80 | ((c >> 6) & 0x3F));
            append(0x80 | (c & 0x3F));
        }
        else
        {
            append(0xF0 | (c >> 18));
            append(0x80 | ((c >> 12) & 0x3F));
            append(0x80 | ((c >> 6) & 0x3F));
            append(0x80 | (c & 0x3F));
        }
    }
    return bytes;
}
