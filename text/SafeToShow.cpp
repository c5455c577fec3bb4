// SPDX-License-Identifier: MIT
#include "text/SafeToShow.h"

#include "text/Unicode.h"

#include <algorithm>

namespace text
{

namespace
{

struct Range
{
    char32_t mFirst;
    char32_t mLast;
};

constexpr Range kObeyed[] = {
    {0x0000, 0x001F}, // C0 controls
    {0x007F, 0x009F}, // delete, C1 controls
    {0x061C, 0x061C}, // Arabic letter mark
    {0x200B, 0x200B}, // zero width space
    {0x200E, 0x200F}, // marks of direction; the joiners before them belong to words
    {0x2028, 0x202E}, // line and paragraph separator, embeddings and overrides of direction
    {0x2060, 0x206F}, // invisible operators, isolates of direction, controls out of use
    {0xFEFF, 0xFEFF}, // byte order mark
    {0xFFF9, 0xFFFB}, // controls of annotations
};

} // namespace

bool IsCharacter(char32_t point)
{
    return point < 0xD800 || (point > 0xDFFF && point <= 0x10FFFF);
}

bool IsSafeToShow(char32_t point)
{
    return IsCharacter(point) && std::ranges::none_of(
                                     kObeyed, [point](const Range& range)
                                     { return point >= range.mFirst && point <= range.mLast; });
}

std::wstring SafeToShow(std::wstring_view wide, std::wstring_view kept)
{
    std::wstring safe;
    safe.reserve(wide.size());
    while (!wide.empty())
    {
        const std::wstring_view before = wide;
        const char32_t point = TakePoint(wide);
        const std::wstring_view character = before.substr(0, before.size() - wide.size());
        if (IsSafeToShow(point) || kept.find(character) != std::wstring_view::npos)
            safe += character;
        else
            safe += IsCharacter(point) ? L' ' : L'\xFFFD';
    }
    return safe;
}

} // namespace text
