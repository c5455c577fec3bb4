// SPDX-License-Identifier: MIT
#include "platform/dialogs/WindowTable.h"
#include "platform/kernel/Error.h"

#include <cassert>
#include <utility>

using namespace platform;

namespace
{

// The place of a DWLP_ index; null for a control or another index.
LONG_PTR* FindLong(HWND handle, int index)
{
    Window* const dialog = FindDialog(handle);
    if (dialog == nullptr)
        return nullptr;
    switch (index)
    {
    case DWLP_MSGRESULT:
        return &dialog->dialog->messageResult;
    case DWLP_USER:
        return &dialog->dialog->user;
    default:
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
}

} // namespace

HWND GetAncestor(HWND handle, [[maybe_unused]] UINT kind)
{
    assert(kind == GA_ROOT);
    Window* const window = FindWindow(handle);
    return window != nullptr ? DialogOf(*window).handle : nullptr;
}

HWND GetDlgItem(HWND handle, int id)
{
    const Window* const dialog = FindDialog(handle);
    return dialog != nullptr ? HandleOf(FindControl(*dialog, static_cast<UINT>(id))) : nullptr;
}

LONG_PTR GetWindowLongPtrW(HWND handle, int index)
{
    const LONG_PTR* const place = FindLong(handle, index);
    return place != nullptr ? *place : 0;
}

LONG_PTR SetWindowLongPtrW(HWND handle, int index, LONG_PTR value)
{
    LONG_PTR* const place = FindLong(handle, index);
    return place != nullptr ? std::exchange(*place, value) : 0;
}

BOOL SetWindowTextW(HWND handle, LPCWSTR text)
{
    return SendMessageW(handle, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) > 0 ? TRUE : FALSE;
}

int GetWindowTextW(HWND handle, LPWSTR text, int capacity)
{
    if (capacity <= 0)
        return 0;
    text[0] = L'\0';
    return static_cast<int>(
        SendMessageW(handle, WM_GETTEXT, static_cast<WPARAM>(capacity), reinterpret_cast<LPARAM>(text)));
}

int GetWindowTextLengthW(HWND handle)
{
    return static_cast<int>(SendMessageW(handle, WM_GETTEXTLENGTH, 0, 0));
}

BOOL EnableWindow(HWND handle, BOOL enable)
{
    Window* const window = FindWindow(handle);
    if (window == nullptr)
        return FALSE;
    const bool wasDisabled = !window->enabled;
    SetEnabled(*window, enable != FALSE);
    return wasDisabled ? TRUE : FALSE;
}

HWND SetFocus(HWND handle)
{
    Window* const control = FindWindow(handle);
    if (control == nullptr || control->dialog || !control->enabled)
        return nullptr;
    const HWND former = HandleOf(DialogOf(*control).dialog->focus);
    SetFocusTo(*control);
    return former;
}

BOOL IsIconic(HWND handle)
{
    const Window* const dialog = FindDialog(handle);
    return dialog != nullptr && dialog->dialog->iconic ? TRUE : FALSE;
}
