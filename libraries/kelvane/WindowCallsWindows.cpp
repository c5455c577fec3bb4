// SPDX-License-Identifier: MIT
#include "libraries/kelvane/WindowCalls.h"

namespace kelvane
{

bool ServeMessage(MSG& message)
{
    if (message.message == WM_QUIT)
    {
        // It ends the loop that the pump runs inside of.
        PostQuitMessage(static_cast<int>(message.wParam));
        return false;
    }
    // The keyboard works in a dialog whose own loop is held up.
    const HWND dialog = message.hwnd != nullptr ? GetAncestor(message.hwnd, GA_ROOT) : nullptr;
    if (dialog != nullptr && IsDialogMessageW(dialog, &message))
        return true;
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return true;
}

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
