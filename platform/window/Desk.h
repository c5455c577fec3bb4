// SPDX-License-Identifier: MIT
// All windows of the process, the thread they live on, and the display that shows them. Everything but
// PostTo is for that thread.
#pragma once

#include "platform/display/Display.h"
#include "platform/window/MessageQueue.h"
#include "platform/window/Window.h"

namespace platform
{

// Makes this thread the windows' own and chooses the display, if neither has happened yet. False on any
// other thread than the windows'.
bool OpenDesk();

// True on the windows' thread, once there is one.
bool IsWindowsThread();

// After OpenDesk.
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

// True while a person's input still has a window that can take it.
bool CanTakeInput(const MSG& message);
// A visible dialog that has not been painted since it appeared; null when there is none.
HWND FindUnpainted();

// Once a person's input has ended: posts to the dialog on top that it is canceled, as soon as the dialog's
// own loop asks for messages. A dialog that does not end on that is ended. False when nothing was done.
bool CancelTopDialog();

void SetVisible(Window& window, bool visible);
void SetEnabled(Window& window, bool enabled);
void SetFocusTo(Window& control);

// Null when there is none.
Window* FindControl(const Window& dialog, UINT id);
Window* FirstTabStop(const Window& dialog);

} // namespace platform
