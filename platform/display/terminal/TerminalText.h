// SPDX-License-Identifier: MIT
// Text between the program and a terminal: in the terminal's own encoding, and harmless.
#pragma once

#include "base/Owned.h"

#include <cstring>
#include <string>
#include <string_view>

#include <unicode/ucnv.h>

namespace platform
{

// Turns "\r\n" into "\n" and lets nothing through that commands a terminal. A "\r" at the end of one part
// waits for the next.
class HarmlessText
{
public:
    std::wstring Next(std::wstring_view part);

private:
    bool mReturnWaits = false;
};

// The character set is that of the user's locale, see UserCharset.
class TerminalEncoding
{
public:
    TerminalEncoding();

    // A character that the set lacks is written as '?'.
    std::string Encode(std::wstring_view text) const;

    // The bytes of a character that are not all there wait for the next call, unless this is the end.
    std::wstring Decode(std::string_view bytes, bool isEnd);

    // Whether all of a decoded line could be read and a box can hold it; else nothing is done with the line
    // but to show the refusal.
    static bool IsText(std::wstring_view line);
    std::wstring Refusal() const;

private:
    std::string mCharset;
    bool mIsUtf8;
    Owned<UConverter, ucnv_close> mDecoder;
};

// What the keys of a line that is not shown have typed: those that move the cursor mean nothing there.
std::wstring TypedText(std::wstring_view keys);

// Overwrites what a text holds, since it may be a password, and empties it.
template <typename Text>
void Wipe(Text& text)
{
    text.resize(text.capacity());
    explicit_bzero(text.data(), text.size() * sizeof(text[0]));
    text.clear();
}

// One by one: a copy by the C library leaves what it moved in vector registers, and the loader saves those on
// the stack when it binds the next function. They may be a password's.
template <typename Character>
void Move(volatile Character* to, const Character* from, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        to[i] = from[i];
}

// Makes room for so many characters: more than the text has. What it grows out of is overwritten.
template <typename Text>
void Grow(Text& text, std::size_t room)
{
    Text larger(room, {});
    Move(larger.data(), text.data(), text.size());
    larger.resize(text.size());
    text.swap(larger);
    Wipe(larger);
}

// Adds to a text that may be a password.
void AddToSecret(std::wstring& text, wchar_t character);

} // namespace platform
