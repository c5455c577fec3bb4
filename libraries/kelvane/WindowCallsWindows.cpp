// SPDX-License-Identifier: MIT
#include "libraries/kelvane/WindowCalls.h"

namespace kelvane
{

int ShowTimedBox(const wchar_t* title, const wchar_t* text, UINT type, DWORD milliseconds)
{
    // Every user32 since Windows XP has it, but no header or import library.
    using TimedBox = int(WINAPI*)(HWND, LPCWSTR, LPCWSTR, UINT, WORD, DWORD);
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"user32.dll"), "MessageBoxTimeoutW");
    if (found == nullptr)
        return MessageBoxW(nullptr, text, title, type);
    return reinterpret_cast<TimedBox>(reinterpret_cast<void*>(found))(nullptr, text, title, type, 0,
                                                                      milliseconds);
}

} // namespace kelvane
