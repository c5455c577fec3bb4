// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace text
{

// Makes `length` characters lower case, in place, one by one and the same for every user: by Unicode's table
// on Linux, as CharLowerBuffW does on Windows. Texts that differ in case alone are then equal.
void FoldCase(wchar_t* characters, std::size_t length);

} // namespace text
