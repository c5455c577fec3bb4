// SPDX-License-Identifier: MIT
#include "text/FoldCase.h"

#include <unicode/uchar.h>

#include <algorithm>

void text::FoldCase(wchar_t* characters, std::size_t length)
{
    std::transform(
        characters, characters + length, characters,
        [](wchar_t character) { return static_cast<wchar_t>(u_tolower(character)); });
}
