// SPDX-License-Identifier: MIT
// Text from a server, made fit to be shown: whatever a terminal or a reader's eye would obey is gone.
#pragma once

#include <string>
#include <string_view>

// The longest text that an event carries, in characters; the rest of a longer one becomes "...".
constexpr std::size_t kLongestText = 1000;

// Gives `text` without line ends after it and with what text::SafeToShow takes out replaced. Where `secret`
// stands in the text, asterisks take its place; an empty secret stands nowhere.
std::string MakeHarmless(std::string_view text, std::string_view secret);
