// SPDX-License-Identifier: MIT
#include "platform/kernel/Text.h"

#include "base/Owned.h"

#include <wchar.h>

#include <algorithm>
#include <array>
#include <cstdio>

using namespace platform;

bool platform::CopyOut(std::wstring_view text, wchar_t* buffer, std::size_t size)
{
    if (text.size() >= size)
        return false;
    *std::copy(text.begin(), text.end(), buffer) = L'\0';
    return true;
}

std::string platform::ReadWholeFile(const char* path)
{
    std::string content;
    const Owned<FILE, fclose> file(fopen(path, "re"));
    std::array<char, 4096> part;
    for (std::size_t count = 1; file != nullptr && count != 0;)
    {
        count = fread(part.data(), 1, part.size(), file.get());
        content.append(part.data(), count);
    }
    return content;
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
