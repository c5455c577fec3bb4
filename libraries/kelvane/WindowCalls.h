// SPDX-License-Identifier: MIT
// What of windows the two systems do differently.
#pragma once

#include <windows.h>

namespace kelvane
{

// What ShowTimedBox answers when nobody did within the time.
constexpr int kTimedOut = 32000;
int ShowTimedBox(const wchar_t* title, const wchar_t* text, UINT type, DWORD milliseconds);

} // namespace kelvane
