// SPDX-License-Identifier: MIT
#include "platform/kernel/Text.h"

#include <wchar.h>

#include <algorithm>

namespace
{

constexpr wchar_t kEscape = 0xDC00;

struct Decoded
{
    wchar_t mPoint;
    std::size_t mBytes; // 0 when the bytes are no UTF-8
};

Decoded DecodeUtf8(std::string_view bytes)
{
    const auto lead = static_cast<unsigned char>(bytes.front());
    if (lead < 0x80)
        return {static_cast<wchar_t>(lead), 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length)
        return {0, 0};
    wchar_t point = lead & (0x7F >> length);
    for (std::size_t at = 1; at < length; ++at)
    {
        const auto next = static_cast<unsigned char>(bytes[at]);
        if ((next & 0xC0) != 0x80)
            return {0, 0};
        point = (point << 6) | (next & 0x3F);
    }
    const bool overlong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
    if (overlong || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
        return {0, 0};
    return {point, length};
}

void AppendUtf8(std::string& bytes, wchar_t point)
{
    const auto byte = [&](int value) { bytes.push_back(static_cast<char>(value)); };
    if (point < 0x80)
    {
        byte(point);
        return;
    }
    if (point < 0x800)
    {
        byte(0xC0 | (point >> 6));
    }
    else
    {
        if (point < 0x10000)
        {
            byte(0xE0 | (point >> 12));
        }
        else
        {
            byte(0xF0 | (point >> 18));
            byte(0x80 | ((point >> 12) & 0x3F));
        }
        byte(0x80 | ((point >> 6) & 0x3F));
    }
    byte(0x80 | (point & 0x3F));
}

} // namespace

std::wstring WideFromSystem(std::string_view bytes)
{
    std::wstring text;
    text.reserve(bytes.size());
    while (!bytes.empty())
    {
        const Decoded decoded = DecodeUtf8(bytes);
        const bool valid = decoded.mBytes != 0;
        text.push_back(valid ? decoded.mPoint : kEscape + static_cast<unsigned char>(bytes.front()));
        bytes.remove_prefix(valid ? decoded.mBytes : 1);
    }
    return text;
}

std::string SystemFromWide(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (const wchar_t point : text)
        if (point >= kEscape + 0x80 && point <= kEscape + 0xFF)
            bytes.push_back(static_cast<char>(point - kEscape));
        else
            AppendUtf8(bytes, point);
    return bytes;
}

bool CopyOut(std::wstring_view text, wchar_t* buffer, std::size_t size)
{
    if (text.size() >= size)
        return false;
    *std::copy(text.begin(), text.end(), buffer) = L'\0';
    return true;
}

wchar_t* _wcsdup(const wchar_t* text)
{
    return text == nullptr ? nullptr : wcsdup(text);
}

wchar_t* wcstok(wchar_t* text, const wchar_t* delimiters)
{
    static thread_local wchar_t* rest = nullptr;
    return wcstok(text, delimiters, &rest);
}
