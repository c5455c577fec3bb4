// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

// The wide form of a UTF-8 text. What is no UTF-8 becomes U+FFFD.
std::wstring Widen(std::string_view text);
