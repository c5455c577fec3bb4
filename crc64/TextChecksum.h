// SPDX-License-Identifier: MIT
// The product's checksum of a text: which bytes a text stands for.
#pragma once

#include "foundation/Oriska.h"

// Over the UTF-16 code units, two bytes each, low byte first, on every system.
std::uint64_t ChecksumOfWideText(const ZTString& text);

// Over the text in the system's ANSI code page, up to the first zero byte; a character that the code page
// lacks becomes its default character.
std::uint64_t ChecksumOfNarrowText(const ZTString& text);
