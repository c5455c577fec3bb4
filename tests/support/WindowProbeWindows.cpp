// SPDX-License-Identifier: MIT
#include "tests/support/WindowProbe.h"

HWND TopWindow()
{
    return GetActiveWindow();
}

HWND FocusedControl()
{
    return GetFocus();
}

std::wstring FocusedSelection()
{
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(GetFocus(), EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    return TextOf(GetFocus()).substr(start, end - start);
}

void PressKey(int controlId, WORD key)
{
    const HWND control = GetDlgItem(TopWindow(), controlId);
    // Unlike SetFocus this tells the dialog, whose default button it may be.
    SendMessageW(TopWindow(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
    PostMessageW(control, WM_KEYDOWN, key, 1);
}
