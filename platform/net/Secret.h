// SPDX-License-Identifier: MIT
// A text in UTF-8 whose memory is overwritten before it is given back.
#pragma once

#include "text/Unicode.h"

#include <cstring>
#include <string>
#include <string_view>

namespace platform
{

class Secret
{
public:
    Secret() = default;
    explicit Secret(std::wstring_view wide) : mText(text::ToUtf8(wide)) {}
    ~Secret() { explicit_bzero(mText.data(), mText.capacity()); }
    Secret(const Secret&) = default;
    Secret& operator=(const Secret&) = delete;

    const std::string& Text() const { return mText; }
    bool IsEmpty() const { return mText.empty(); }

private:
    std::string mText;
};

} // namespace platform
