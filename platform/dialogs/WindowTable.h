// SPDX-License-Identifier: MIT
// All windows of the process by their handles, the thread they live on, their messages, and the display that
// shows them. Everything but PostTo is for that thread.
#pragma once

#include "platform/dialogs/Display.h"
#include "platform/dialogs/MessageQueue.h"
#include "platform/dialogs/Window.h"

namespace platform
{

// Makes this thread the windows' own and chooses the display, if neither has happened yet. False on any
// other thread than the windows'.
bool StartWindows();

// True on the windows' thread, once there is one.
bool IsWindowsThread();

// After StartWindows.
Display& TheDisplay();
MessageQueue& TheQueue();

// The live window of a handle; null when there is none, or on another thread, with
// ERROR_INVALID_WINDOW_HANDLE.
Window* FindWindow(HWND handle);
Window* FindDialog(HWND handle); // null for a control as well
HWND HandleOf(const Window* window);

// Queues a message, from any thread. False when the window does not live (any more).
bool PostTo(HWND handle, UINT message, WPARAM wParam, LPARAM lParam);

// Takes over a dialog with its controls and gives each a handle. Handles are never used twice.
Window& AddDialog(std::unique_ptr<Window> dialog);
// Ends the life of the newest dialog; what was posted to it is dropped.
void RemoveDialog(Window& dialog);

// Has a window serve a message, counting how deep handlers are nested.
LRESULT Call(Window& window, UINT message, WPARAM wParam, LPARAM lParam);
int HandlerDepth();

// A visible dialog that has not been painted since it appeared; null when there is none.
HWND FindUnpainted();

void SetVisible(Window& window, bool visible);
void SetEnabled(Window& window, bool enabled);
void SetFocusTo(Window& control);

// Null when there is none.
Window* FindControl(const Window& dialog, UINT id);
Window* FirstTabStop(const Window& dialog);

} // namespace platform
