// SPDX-License-Identifier: MIT
// UTF-8, the text on the wire, from and to wide text, and memory for secrets.
#pragma once

#include <string>
#include <string_view>

// What is no code point (a lone surrogate, say) becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
// Each byte that begins no well-formed sequence becomes U+FFFD.
std::wstring FromUtf8(std::string_view text);
// The same into memory that has room for a character a byte; gives the number of characters.
std::size_t DecodeUtf8(std::string_view text, wchar_t* wide);

// A text from a server, fit for a console line: one line, no control or direction characters, no more than
// a few hundred characters.
std::wstring SafeToPrint(std::string_view text);

// The system's words for an error as they stand behind a colon: without a capital letter in front, unless an
// abbreviation begins with it.
std::string CauseText(std::string text);

// A text whose memory is overwritten before it is given back.
class Secret
{
public:
    Secret() = default;
    explicit Secret(std::wstring_view text);
    ~Secret();
    Secret(const Secret&) = default;
    Secret& operator=(const Secret&) = delete;

    const std::string& Text() const { return mText; }
    bool IsEmpty() const { return mText.empty(); }

private:
    std::string mText;
};
