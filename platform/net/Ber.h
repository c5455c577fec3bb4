// SPDX-License-Identifier: MIT
// The elements of LDAP's encoding, read where they lie. A tag is one byte and a length has at most four
// behind its first, as in all of LDAP.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

enum class BerReading
{
    Done,
    Incomplete,
    Wrong
};

// Reads the length behind the tag at `at` and moves behind both.
BerReading ReadBerHead(std::string_view bytes, std::size_t& at, std::size_t& length);

// Takes the first element off `bytes` and gives what it holds; nothing when there is no whole one.
std::optional<std::string_view> TakeBerElement(std::string_view& bytes);
