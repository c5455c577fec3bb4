// SPDX-License-Identifier: MIT
// Text between the program and a terminal: in the terminal's own encoding, which is that of the user's
// locale, and harmless.
#pragma once

#include <clocale>
#include <string>
#include <string_view>

#include <iconv.h>

namespace platform
{

// Turns "\r\n" into "\n" and shows every control character but "\n" and tab as printable text, so that
// nothing in a text can command a terminal. A "\r" at the end of one part waits for the next.
class HarmlessText
{
public:
    std::wstring Next(std::wstring_view part);

private:
    bool mReturnWaits = false;
};

class TerminalEncoding
{
public:
    TerminalEncoding();
    ~TerminalEncoding();
    TerminalEncoding(const TerminalEncoding&) = delete;
    TerminalEncoding& operator=(const TerminalEncoding&) = delete;

    // A character that the encoding lacks is written with similar ones, or as '?'.
    std::string Encode(std::wstring_view text) const;
    // What cannot be read becomes U+FFFD.
    std::wstring Decode(std::string_view bytes) const;

private:
    locale_t mLocale;
    iconv_t mEncoder;
    iconv_t mDecoder;
};

} // namespace platform
