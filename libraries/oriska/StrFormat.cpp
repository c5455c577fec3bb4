// SPDX-License-Identifier: MIT
#include "foundation/Oriska.h"

#include <algorithm>

namespace
{

// Stands for every index that no list of arguments can reach.
constexpr std::size_t kIndexMax = 1'000'000;

struct Placeholder
{
    std::size_t index;
    std::wstring_view spec;
};

// Reads `{}`, `{n}`, `{:spec}` or `{n:spec}` at the front of `text` and takes it off. False when it is none.
bool TakePlaceholder(std::wstring_view& text, std::size_t runningIndex, Placeholder& placeholder)
{
    const std::size_t end = text.find(L'}');
    if (end == std::wstring_view::npos)
        return false;
    const std::wstring_view inside = text.substr(1, end - 1);
    std::size_t index = 0;
    std::size_t place = 0;
    for (; place < inside.size() && inside[place] >= L'0' && inside[place] <= L'9'; ++place)
        index = std::min(index * 10 + static_cast<std::size_t>(inside[place] - L'0'), kIndexMax);
    if (place < inside.size() && inside[place] != L':')
        return false;
    placeholder.index = place == 0 ? runningIndex : index;
    placeholder.spec = inside.substr(std::min(place + 1, inside.size()));
    text.remove_prefix(end + 1);
    return true;
}

void Append(ZTString& out, std::wstring_view text)
{
    out.Append(text.data(), static_cast<int>(text.size()));
}

} // namespace

ZTString _StrFormat(const wchar_t* format, const PlaceholderValues& values)
{
    ZTString result;
    std::wstring_view rest = format ? format : L"";
    std::size_t runningIndex = 0;
    // One allocation serves most texts.
    constexpr int kRoomForAValue = 24;
    result.GetBuffer(static_cast<int>(rest.size()) + kRoomForAValue * static_cast<int>(values.size()));
    result.ReleaseBuffer(0);
    for (;;)
    {
        const std::size_t brace = rest.find(L'{');
        Append(result, rest.substr(0, brace));
        if (brace == std::wstring_view::npos)
            return result;
        rest.remove_prefix(brace);

        Placeholder placeholder;
        if (rest.starts_with(L"{{"))
        {
            result += L'{';
            rest.remove_prefix(2);
        }
        else if (!TakePlaceholder(rest, runningIndex, placeholder))
        {
            result += L'{';
            rest.remove_prefix(1);
        }
        else if (placeholder.index >= values.size())
        {
            result += L"@@@";
            return result;
        }
        else
        {
            ++runningIndex;
            const PlaceholderValue& value = values[placeholder.index];
            if (!value.AppendTo(result, placeholder.spec))
                value.AppendTo(result, {});
        }
    }
}
