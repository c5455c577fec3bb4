// SPDX-License-Identifier: MIT
#include "libraries/ipworks/HarmlessText.h"

#include "text/SafeToShow.h"
#include "text/Unicode.h"

#include <algorithm>

namespace
{

constexpr std::size_t kMostBytes = 4; // of a character

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
    std::string shown(text.substr(0, kMostBytes * kLongestText + 2 * secret.size()));
    const bool isCut = shown.size() < text.size();
    Conceal(shown, secret);
    if (isCut)
        shown.resize(shown.size() - std::min(shown.size(), secret.size()));

    std::wstring wide = text::SafeToShow(text::FromUtf8(shown));
    if (!isCut && wide.size() <= kLongestText)
        return text::ToUtf8(wide);
    wide.resize(std::min(wide.size(), kLongestText));
    return text::ToUtf8(wide) + "...";
}
