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

bool IsEnabled(HWND window)
{
    return IsWindow(window) && IsWindowEnabled(window);
}

std::wstring SelectionOf(HWND edit)
{
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    return TextOf(edit).substr(start, end - start);
}
