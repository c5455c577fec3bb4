// SPDX-License-Identifier: MIT
#include "libraries/ipworks/HarmlessText.h"

#include <algorithm>

namespace
{

// Reads one character from the front of `text` and takes it off. False for a byte that begins none: that
// byte is taken off alone.
bool TakeCharacter(std::string_view& text, char32_t& character)
{
    const auto lead = static_cast<unsigned char>(text.front());
    std::size_t length = 1;
    char32_t smallest = 0;
    character = lead;
    if (lead >= 0xF0 && lead < 0xF5)
    {
        length = 4;
        smallest = 0x10000;
        character = lead & 0x07U;
    }
    else if (lead >= 0xE0 && lead < 0xF0)
    {
        length = 3;
        smallest = 0x800;
        character = lead & 0x0FU;
    }
    else if (lead >= 0xC2 && lead < 0xE0)
    {
        length = 2;
        smallest = 0x80;
        character = lead & 0x1FU;
    }

    bool valid = lead < 0x80 || (length > 1 && text.size() >= length);
    for (std::size_t i = 1; valid && i < length; ++i)
    {
        const auto next = static_cast<unsigned char>(text[i]);
        valid = (next & 0xC0U) == 0x80U;
        character = (character << 6U) | (next & 0x3FU);
    }
    valid =
        valid && character >= smallest && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
    text.remove_prefix(valid ? length : 1);
    return valid;
}

bool IsObeyed(char32_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || // C0, DEL, C1
           character == 0x200E || character == 0x200F ||                  // direction marks
           (character >= 0x2028 && character <= 0x202E) ||                // separators, direction overrides
           (character >= 0x2066 && character <= 0x2069);                  // direction isolates
}

void Conceal(std::string& text, std::string_view secret)
{
    constexpr std::string_view kAsterisks = "****";
    if (secret.empty())
        return;
    for (std::size_t at = text.find(secret); at != std::string::npos;
         at = text.find(secret, at + kAsterisks.size()))
        text.replace(at, secret.size(), kAsterisks);
}

} // namespace

std::string MakeHarmless(std::string_view text, std::string_view secret)
{
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n'))
        text.remove_suffix(1);

    // The secret goes before the rest is cut off, and with the cut the beginning of one that it went through.
    std::string shown(text.substr(0, kLongestText + 2 * secret.size()));
    const bool cut = shown.size() < text.size();
    Conceal(shown, secret);
    if (cut)
        shown.resize(shown.size() - std::min(shown.size(), secret.size()));

    std::string result;
    std::string_view rest = shown;
    while (!rest.empty())
    {
        const std::string_view before = rest;
        char32_t character = 0;
        const bool valid = TakeCharacter(rest, character);
        const std::string_view bytes = before.substr(0, before.size() - rest.size());
        const std::string_view piece = !valid ? "?" : IsObeyed(character) ? " " : bytes;
        if (result.size() + piece.size() > kLongestText)
            return result + "...";
        result += piece;
    }
    return cut ? result + "..." : result;
}
