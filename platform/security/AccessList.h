// SPDX-License-Identifier: MIT
#pragma once

#include "winnt.h"

#include <optional>
#include <vector>

constexpr BYTE kAllow = 0; // AceType
constexpr BYTE kDeny = 1;

// The entries of a list in order; none when the list does not hold together.
std::optional<std::vector<const ACCESS_ALLOWED_ACE*>> EntriesOf(const ACL& acl);
