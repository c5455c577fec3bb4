// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include <algorithm>
#include <cwchar>

namespace
{

// Stands for every index that no list of arguments can reach.
constexpr std::size_t kIndexMax = 1'000'000;

struct Placeholder
{
    std::size_t index;
    std::wstring_view spec;
};

// Reads `{}`, `{n}`, `{:spec}` or `{n:spec}`, of which `at` is the brace, and gives its end; null when it is
// not one.
const wchar_t* ReadPlaceholder(const wchar_t* at, std::size_t runningIndex, Placeholder& placeholder)
{
    ++at;
    placeholder.index = runningIndex;
    if (*at >= L'0' && *at <= L'9')
        for (placeholder.index = 0; *at >= L'0' && *at <= L'9'; ++at)
            placeholder.index =
                std::min(placeholder.index * 10 + static_cast<std::size_t>(*at - L'0'), kIndexMax);
    const wchar_t* spec = at;
    if (*at == L':')
        for (++spec; *at != 0 && *at != L'}';)
            ++at;
    if (*at != L'}')
        return nullptr;
    placeholder.spec = {spec, at};
    return at + 1;
}

} // namespace

ZTString _StrFormat(const wchar_t* format, const PlaceholderValues& values)
{
    ZTString result;
    const wchar_t* at = format != nullptr ? format : L"";
    // One allocation serves most texts.
    constexpr std::size_t kRoomForAValue = 24;
    result.GetBuffer(static_cast<int>(std::wcslen(at) + kRoomForAValue * values.size()));
    result.ReleaseBuffer(0);
    std::size_t runningIndex = 0;
    while (*at != 0)
    {
        Placeholder placeholder;
        const wchar_t* const begin = at;
        if (*at != L'{')
        {
            while (*at != 0 && *at != L'{')
                ++at;
            if (at - begin == 1)
                result += *begin; // a separator, the commonest of all
            else
                result.Append(begin, static_cast<int>(at - begin));
        }
        else if (at[1] == L'{')
        {
            result += L'{';
            at += 2;
        }
        else if (at = ReadPlaceholder(begin, runningIndex, placeholder); at == nullptr)
        {
            result += L'{';
            at = begin + 1;
        }
        else if (placeholder.index >= values.size())
        {
            result += L"@@@";
            break;
        }
        else
        {
            ++runningIndex;
            const PlaceholderValue& value = values[placeholder.index];
            if (!value.AppendTo(result, placeholder.spec))
                value.AppendTo(result, {});
        }
    }
    return result;
}
