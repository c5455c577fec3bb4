// SPDX-License-Identifier: MIT
// What makes text harmless: everything that comes from a server, a file name or another account passes
// through here on its way to the console, the log or a terminal.
#pragma once

#include <string>
#include <string_view>

namespace text
{

// False for half of a surrogate pair, which also stands for a byte that was not UTF-8, and for what is beyond
// Unicode.
bool IsCharacter(char32_t point);

// False for what a terminal obeys (control characters), what breaks a line, what turns or hides the text
// around it (marks of direction, characters without width), and for what is not a character.
bool IsSafeToShow(char32_t point);

// The text with a blank in place of each character that is not safe, and U+FFFD where there is none at all.
// `kept` are characters that the caller takes care of, such as line ends.
std::wstring SafeToShow(std::wstring_view wide, std::wstring_view kept = {});

} // namespace text
