// SPDX-License-Identifier: MIT
// Wide text as UTF-8 and as UTF-16, and back. A wide character is a code point on Linux and a code unit on
// Windows; wherever bytes or code units are written or counted, the text passes through here.
#pragma once

#include <string>
#include <string_view>

namespace text
{

// A byte that is not part of well-formed UTF-8 (RFC 3629) becomes the lone surrogate U+DC00 + byte, and
// ToUtf8 gives that byte back: each file name, argument and value survives the way there and back.
std::wstring FromUtf8(std::string_view bytes);

// Any other lone surrogate, and what is beyond Unicode, becomes U+FFFD. The bytes are written in place, so no
// second copy of a secret is left in memory.
std::string ToUtf8(std::wstring_view wide);

// A lone surrogate stays as it is, both ways; what is beyond Unicode becomes U+FFFD. Written in place, too.
std::wstring FromUtf16(std::u16string_view units);
std::u16string ToUtf16(std::wstring_view wide);

// Takes the code point off the front of a text that is not empty; a lone surrogate is one.
char32_t TakePoint(std::wstring_view& rest);

} // namespace text
