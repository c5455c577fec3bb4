// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

// How long the archiver may pack, in seconds. In a source file of its own: a test program brings a shorter
// one.
extern const std::int64_t kPackingLimit;
