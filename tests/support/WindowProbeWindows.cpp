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

std::wstring SelectionOf(HWND edit)
{
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    return TextOf(edit).substr(start, end - start);
}

void PressKey(HWND dialog, int controlId, WORD key)
{
    const HWND control = GetDlgItem(dialog, controlId);
    // Unlike SetFocus this tells the dialog, whose default button it may be.
    SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
    PostMessageW(control, WM_KEYDOWN, key, 1);
}
