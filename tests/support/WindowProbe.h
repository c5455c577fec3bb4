// SPDX-License-Identifier: MIT
// What a test asks of windows and does to them as a person would, on either system, in their thread.
#pragma once

#include <windows.h>

#include <string>

// The dialog or message box that a person's input goes to.
HWND TopWindow();
constexpr int kMessageBoxText = 0xFFFF; // the control with a box's text
HWND FocusedControl();

std::wstring TextOf(HWND window); // also one of another process
std::wstring FocusedSelection();

// Presses a key at a control (VK_RETURN or VK_ESCAPE), which is served like any input, not at once.
void PressKey(int controlId, WORD key);

// Serves the messages that wait.
void Pump();
