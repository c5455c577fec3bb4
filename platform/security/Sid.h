// SPDX-License-Identifier: MIT
// Security identifiers: who may, in access lists, and who one is, in tokens.
#pragma once

#include "winnt.h"

#include <initializer_list>
#include <vector>

constexpr BYTE kMaxSubAuthorities = 15;

// The bytes of a SID.
using SidBytes = std::vector<BYTE>;

SidBytes MakeSid(const SID_IDENTIFIER_AUTHORITY& authority, std::initializer_list<DWORD> subAuthorities);

constexpr DWORD SidLength(BYTE subAuthorities)
{
    return 8 + 4 * static_cast<DWORD>(subAuthorities);
}

bool IsValidSid(const void* sid);
bool IsSameSid(const void* left, const void* right);
