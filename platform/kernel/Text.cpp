// SPDX-License-Identifier: MIT
#include "platform/kernel/Text.h"

#include <wchar.h>

#include <algorithm>

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
