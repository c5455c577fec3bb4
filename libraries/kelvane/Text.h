// SPDX-License-Identifier: MIT
// Between the string class and UTF-8, by the rules of text/Unicode.h.
#pragma once

#include "foundation/Oriska.h"

#include <string>
#include <string_view>

namespace kelvane
{

std::string Narrow(std::wstring_view text);
ZTString Widen(std::string_view text);

// A text's view; ZTString has its own of the same kind.
inline std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

} // namespace kelvane
