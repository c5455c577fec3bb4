// SPDX-License-Identifier: MIT
#include "platform/dialogs/WindowTable.h"
#include "platform/kernel/Error.h"

#include <cassert>

using namespace platform;

LRESULT SendMessageW(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* const window = FindWindow(handle);
    return window != nullptr ? Call(*window, message, wParam, lParam) : 0;
}

BOOL PostMessageW(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (PostTo(handle, message, wParam, lParam))
        return TRUE;
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
}

BOOL PeekMessageW(LPMSG message, [[maybe_unused]] HWND window, [[maybe_unused]] UINT first,
                  [[maybe_unused]] UINT last, UINT remove)
{
    assert(window == nullptr && first == 0 && last == 0);
    const bool input = (remove & (PM_QS_POSTMESSAGE | PM_QS_PAINT)) == 0;
    const bool isThere = IsWindowsThread() && TheQueue().Next(*message, (remove & PM_REMOVE) != 0, input);
    return isThere ? TRUE : FALSE;
}

// Keys reach the windows as what they do; there is nothing to translate.
BOOL TranslateMessage(const MSG*)
{
    return FALSE;
}

LRESULT DispatchMessageW(const MSG* message)
{
    return SendMessageW(message->hwnd, message->message, message->wParam, message->lParam);
}
