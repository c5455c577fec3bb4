// SPDX-License-Identifier: MIT
#include "text/Unicode.h"

namespace text
{

namespace
{

constexpr char32_t kLargest = 0x10FFFF;
constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kEscape = 0xDC00; // and a byte of 0x80 or more
constexpr char32_t kFirstAstral = 0x10000;
constexpr bool kHoldsPoints = sizeof(wchar_t) > sizeof(char16_t);

bool IsHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

char32_t PointOfPair(char32_t high, char32_t low)
{
    return kFirstAstral + ((high - 0xD800) << 10) + (low - 0xDC00);
}

template <typename Text>
void AppendPair(Text& text, char32_t point)
{
    using Unit = typename Text::value_type;
    text.push_back(static_cast<Unit>(0xD800 + ((point - kFirstAstral) >> 10)));
    text.push_back(static_cast<Unit>(0xDC00 + (point & 0x3FF)));
}

// Takes a character off the front, or one byte that begins none, which it gives escaped.
char32_t TakeUtf8(std::string_view& rest)
{
    const auto lead = static_cast<unsigned char>(rest.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, kFirstAstral}; // by length; less is overlong
    char32_t point = length == 1 ? lead : lead & (0x7FU >> length);
    bool isValid = length == 1 || (lead >= 0xC2 && lead < 0xF5 && rest.size() >= length);
    for (std::size_t at = 1; isValid && at < length; ++at)
    {
        const auto next = static_cast<unsigned char>(rest[at]);
        isValid = (next & 0xC0) == 0x80;
        point = (point << 6) | (next & 0x3FU);
    }
    isValid =
        isValid && point >= kSmallest[length] && point <= kLargest && (point < 0xD800 || point > 0xDFFF);
    rest.remove_prefix(isValid ? length : 1);
    return isValid ? point : kEscape + lead;
}

void AppendUtf8(std::string& bytes, char32_t point)
{
    const auto append = [&bytes](char32_t byte) { bytes += static_cast<char>(byte); };
    if (point < 0x80)
        return append(point);
    if (point < 0x800)
        append(0xC0 | (point >> 6));
    else if (point < kFirstAstral)
        append(0xE0 | (point >> 12));
    else
    {
        append(0xF0 | (point >> 18));
        append(0x80 | ((point >> 12) & 0x3F));
    }
    if (point >= 0x800)
        append(0x80 | ((point >> 6) & 0x3F));
    append(0x80 | (point & 0x3F));
}

} // namespace

char32_t TakePoint(std::wstring_view& rest)
{
    const auto first = static_cast<char32_t>(rest.front());
    rest.remove_prefix(1);
    if (kHoldsPoints || !IsHighSurrogate(first) || rest.empty() ||
        !IsLowSurrogate(static_cast<char32_t>(rest.front())))
        return first;
    const auto second = static_cast<char32_t>(rest.front());
    rest.remove_prefix(1);
    return PointOfPair(first, second);
}

std::wstring FromUtf8(std::string_view bytes)
{
    std::wstring wide;
    wide.reserve(bytes.size());
    while (!bytes.empty())
    {
        const char32_t point = TakeUtf8(bytes);
        if (kHoldsPoints || point < kFirstAstral)
            wide.push_back(static_cast<wchar_t>(point));
        else
            AppendPair(wide, point);
    }
    return wide;
}

std::string ToUtf8(std::wstring_view wide)
{
    constexpr std::size_t kMostBytes = kHoldsPoints ? 4 : 3; // of one wide character
    std::string bytes;
    bytes.reserve(wide.size() * kMostBytes);
    while (!wide.empty())
    {
        const char32_t point = TakePoint(wide);
        if (point >= kEscape + 0x80 && point <= kEscape + 0xFF)
            bytes += static_cast<char>(point - kEscape);
        else
            AppendUtf8(bytes, point > kLargest || IsHighSurrogate(point) || IsLowSurrogate(point)
                                  ? kReplacement
                                  : point);
    }
    return bytes;
}

std::wstring FromUtf16(std::u16string_view units)
{
    std::wstring wide;
    wide.reserve(units.size());
    for (std::size_t at = 0; at < units.size(); ++at)
    {
        const bool isPair = kHoldsPoints && IsHighSurrogate(units[at]) && at + 1 < units.size() &&
                            IsLowSurrogate(units[at + 1]);
        wide.push_back(static_cast<wchar_t>(isPair ? PointOfPair(units[at], units[at + 1]) : units[at]));
        at += isPair ? 1 : 0;
    }
    return wide;
}

std::u16string ToUtf16(std::wstring_view wide)
{
    constexpr std::size_t kMostUnits = kHoldsPoints ? 2 : 1; // of one wide character
    std::u16string units;
    units.reserve(wide.size() * kMostUnits);
    for (const wchar_t character : wide)
    {
        const auto point = static_cast<char32_t>(character);
        if (point < kFirstAstral)
            units.push_back(static_cast<char16_t>(point));
        else if (point > kLargest)
            units.push_back(static_cast<char16_t>(kReplacement));
        else
            AppendPair(units, point);
    }
    return units;
}

} // namespace text
