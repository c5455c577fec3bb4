// SPDX-License-Identifier: MIT
// What a test asks of this process's windows and does to them as a person would, on either system. For the
// windows' thread.
#pragma once

#include <windows.h>

#include <string>

// The dialog or message box that a person's input goes to.
HWND TopWindow();
HWND FocusedControl();

// False as well for a window that has gone.
bool IsEnabled(HWND window);

std::wstring TextOf(HWND window); // also one of another process
std::wstring SelectionOf(HWND edit);

// Serves the messages that wait.
void Pump();
