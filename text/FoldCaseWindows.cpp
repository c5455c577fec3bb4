// SPDX-License-Identifier: MIT
#include "text/FoldCase.h"

#include <windows.h>

void text::FoldCase(wchar_t* characters, std::size_t length)
{
    CharLowerBuffW(characters, static_cast<DWORD>(length));
}
