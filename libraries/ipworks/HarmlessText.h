// SPDX-License-Identifier: MIT
// Text from a server, made fit to be shown: whatever a terminal or a reader's eye would obey is gone.
#pragma once

#include <string>
#include <string_view>

// The longest text that an event carries, in bytes; the rest of a longer one becomes "...".
constexpr std::size_t kLongestText = 1000;

// Gives `text` without line ends behind it, with each control character and each mark that turns the
// writing direction replaced by a blank, and each byte that is no UTF-8 by "?". Where `secret` stands in
// the text, asterisks take its place; an empty secret stands nowhere.
std::string MakeHarmless(std::string_view text, std::string_view secret);
