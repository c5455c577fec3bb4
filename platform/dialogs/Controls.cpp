// SPDX-License-Identifier: MIT
#include "platform/dialogs/Controls.h"

#include "platform/dialogs/WindowTable.h"

#include <algorithm>
#include <cwchar>
#include <string_view>

namespace platform
{

namespace
{

const wchar_t* TextOf(LPARAM lParam)
{
    const auto* const text = reinterpret_cast<const wchar_t*>(lParam);
    return text != nullptr ? text : L"";
}

// The text and a NUL, cut to the capacity of one at least; gives the length without the NUL.
LRESULT CopyText(std::wstring_view text, WPARAM capacity, LPARAM lParam)
{
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(capacity) - 1);
    auto* const buffer = reinterpret_cast<wchar_t*>(lParam);
    *std::copy_n(text.data(), length, buffer) = L'\0';
    return static_cast<LRESULT>(length);
}

std::size_t CountBreaks(const Window& edit, std::wstring_view text)
{
    return (edit.style & ES_MULTILINE) == 0 ? 0 : static_cast<std::size_t>(std::ranges::count(text, L'\n'));
}

// The console sets its whole text for each line that it adds; the display then hears of the added part only,
// and the rest is read once.
void ReplaceEditText(Window& edit, const wchar_t* text)
{
    const std::size_t oldLength = edit.text.size();
    edit.selectionStart = edit.selectionEnd = 0;
    if (std::wcsncmp(text, edit.text.c_str(), oldLength) != 0)
    {
        SetEditText(edit, text);
        TheDisplay().Refresh(edit, Change::Text, 0);
        return;
    }
    const std::wstring_view added = text + oldLength;
    if (added.empty())
        return;
    edit.text += added;
    edit.lineCount += CountBreaks(edit, added);
    TheDisplay().Refresh(edit, oldLength == 0 ? Change::Text : Change::TextAppended, oldLength);
}

// -1 as the end is the end of the text, -1 as the start selects nothing and leaves the caret.
void SelectText(Window& edit, std::ptrdiff_t start, std::ptrdiff_t end)
{
    const auto length = static_cast<std::ptrdiff_t>(edit.text.size());
    if (start < 0)
        start = end = static_cast<std::ptrdiff_t>(edit.selectionEnd);
    if (end < 0 || end > length)
        end = length;
    start = std::min(start, length);
    edit.selectionStart = static_cast<std::size_t>(std::min(start, end));
    edit.selectionEnd = static_cast<std::size_t>(std::max(start, end));
    TheDisplay().Refresh(edit, Change::Selection, 0);
}

LRESULT ServeEdit(Window& edit, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_SETTEXT:
        ReplaceEditText(edit, TextOf(lParam));
        return TRUE;
    case EM_GETLINECOUNT:
        return static_cast<LRESULT>(edit.lineCount);
    case EM_LINESCROLL:
        if ((edit.style & ES_MULTILINE) == 0)
            return FALSE;
        TheDisplay().ScrollLines(edit, static_cast<long>(lParam));
        return TRUE;
    case EM_SETSEL:
        SelectText(edit, static_cast<int>(wParam), static_cast<int>(lParam));
        return 0;
    default:
        return ServeText(edit, message, wParam, lParam);
    }
}

LRESULT ServeButton(Window& button, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case BM_GETCHECK:
        return button.check;
    case BM_SETCHECK:
        if (button.kind == WindowKind::CheckBox && button.check != static_cast<int>(wParam))
        {
            button.check = static_cast<int>(wParam);
            TheDisplay().Refresh(button, Change::Check, 0);
        }
        return 0;
    case BM_CLICK:
        if (IsUsable(button))
            SetFocusTo(button);
        if (button.kind == WindowKind::CheckBox)
            ServeButton(button, BM_SETCHECK, button.check == BST_CHECKED ? BST_UNCHECKED : BST_CHECKED, 0);
        Call(*button.parent, WM_COMMAND, MAKEWPARAM(button.id, BN_CLICKED),
             reinterpret_cast<LPARAM>(button.handle));
        return 0;
    default:
        return ServeText(button, message, wParam, lParam);
    }
}

LRESULT ServeComboBox(Window& box, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto count = static_cast<std::ptrdiff_t>(box.items.size());
    const auto index = static_cast<std::ptrdiff_t>(static_cast<int>(wParam));
    ComboItem* const item =
        index >= 0 && index < count ? &box.items[static_cast<std::size_t>(index)] : nullptr;
    const ComboItem* const selected =
        box.selection >= 0 ? &box.items[static_cast<std::size_t>(box.selection)] : nullptr;
    switch (message)
    {
    case CB_ADDSTRING:
        box.items.push_back({TextOf(lParam), 0});
        TheDisplay().Refresh(box, Change::Items, 0);
        return count;
    case CB_GETCURSEL:
        return box.selection;
    case CB_SETCURSEL:
        box.selection = item != nullptr ? static_cast<int>(index) : -1;
        TheDisplay().Refresh(box, Change::Selection, 0);
        return item != nullptr ? index : CB_ERR;
    case CB_GETITEMDATA:
        return item != nullptr ? item->data : CB_ERR;
    case CB_SETITEMDATA:
        if (item != nullptr)
            item->data = lParam;
        return item != nullptr ? 0 : CB_ERR;
    case WM_SETTEXT:
        return CB_ERR;
    case WM_GETTEXT:
        return CopyText(selected != nullptr ? selected->text : L"", wParam, lParam);
    case WM_GETTEXTLENGTH:
        return selected != nullptr ? static_cast<LRESULT>(selected->text.size()) : 0;
    default:
        return 0;
    }
}

} // namespace

void SetEditText(Window& edit, std::wstring text)
{
    edit.OverwriteText();
    edit.text = std::move(text);
    edit.lineCount = 1 + CountBreaks(edit, edit.text);
}

LRESULT ServeText(Window& window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_SETTEXT:
        if (window.text != TextOf(lParam))
        {
            window.text = TextOf(lParam);
            TheDisplay().Refresh(window, Change::Text, 0);
        }
        return TRUE;
    case WM_GETTEXT:
        return CopyText(window.text, wParam, lParam);
    case WM_GETTEXTLENGTH:
        return static_cast<LRESULT>(window.text.size());
    default:
        return 0;
    }
}

LRESULT ServeControl(Window& control, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (control.kind)
    {
    case WindowKind::Edit:
        return ServeEdit(control, message, wParam, lParam);
    case WindowKind::PushButton:
    case WindowKind::CheckBox:
        return ServeButton(control, message, wParam, lParam);
    case WindowKind::ComboBox:
        return ServeComboBox(control, message, wParam, lParam);
    case WindowKind::Label:
    case WindowKind::Dialog:
        break;
    }
    return ServeText(control, message, wParam, lParam);
}

} // namespace platform
