// SPDX-License-Identifier: MIT
// A dialog is asked to paint once after it has appeared. Its device context is its handle under another
// type: there is one context a dialog, and only icons to put into it. Desktops show no client area of an
// iconic window, so no display shows them.
#include "platform/dialogs/WindowTable.h"

using namespace platform;

namespace
{

constexpr int kPixelsPerUnit = 2; // where the display has no pixels
constexpr int kIconSize = 32;     // pixels

} // namespace

BOOL UpdateWindow(HWND handle)
{
    Window* const dialog = FindDialog(handle);
    if (dialog == nullptr)
        return FALSE;
    TheDisplay().Update(*dialog);
    return TRUE;
}

HDC BeginPaint(HWND handle, LPPAINTSTRUCT paint)
{
    *paint = {};
    Window* const dialog = FindDialog(handle);
    if (dialog == nullptr)
        return nullptr;
    dialog->dialog->needsPaint = false;
    paint->hdc = reinterpret_cast<HDC>(handle);
    return paint->hdc;
}

BOOL EndPaint(HWND, const PAINTSTRUCT*)
{
    return TRUE;
}

BOOL GetClientRect(HWND handle, LPRECT rectangle)
{
    const Window* const dialog = FindDialog(handle);
    if (dialog == nullptr)
        return FALSE;
    const DialogState& state = *dialog->dialog;
    *rectangle = {0, 0, state.pixelWidth, state.pixelHeight};
    if (state.pixelWidth == 0)
        *rectangle = {0, 0, dialog->rect.width * kPixelsPerUnit, dialog->rect.height * kPixelsPerUnit};
    return TRUE;
}

BOOL DrawIcon(HDC context, int, int, HICON icon)
{
    return FindDialog(reinterpret_cast<HWND>(context)) != nullptr && icon != nullptr ? TRUE : FALSE;
}

int GetSystemMetrics(int index)
{
    return index == SM_CXICON || index == SM_CYICON ? kIconSize : 0;
}
