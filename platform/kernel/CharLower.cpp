// SPDX-License-Identifier: MIT
#include <windows.h>

#include <unicode/uchar.h>

DWORD CharLowerBuffW(LPWSTR text, DWORD length)
{
    for (DWORD i = 0; i < length; ++i)
        text[i] = static_cast<wchar_t>(u_tolower(text[i]));
    return length;
}
