// SPDX-License-Identifier: MIT
#include "libraries/kelvane/WindowCalls.h"

namespace kelvane
{

static_assert(kTimedOut == MB_TIMEDOUT);

int ShowTimedBox(const wchar_t* title, const wchar_t* text, UINT type, DWORD milliseconds)
{
    return MessageBoxTimeoutW(nullptr, text, title, type, 0, milliseconds);
}

} // namespace kelvane
