// SPDX-License-Identifier: MIT
// Windows as the layer keeps them: plain objects that hold everything the program or a person can see or
// change. The message calls work on these, a Display shows them. They live on one thread, the one that
// made the first of them.
#pragma once

#include "platform/resource/DialogTemplate.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace platform
{

struct Window;

enum class WindowKind
{
    Dialog,
    PushButton,
    CheckBox, // automatic: a click toggles it
    Edit,
    ComboBox, // drop-down list
    Label,
};

struct ComboItem
{
    std::wstring text;
    LPARAM data = 0;
};

// What only a dialog has.
struct DialogState
{
    DialogFont font;
    HICON icon = nullptr;      // has a picture of every size
    Window* focus = nullptr;   // the control with the keyboard, also while another dialog is on top
    UINT defaultButton = 0;    // control id, 0 for none
    bool isMessageBox = false; // one label and push buttons without a layout: the display makes one
    UINT messageBoxType = 0;   // as given to MessageBoxW
    bool iconic = false;       // minimised
    int pixelWidth = 0;        // client area, set by the display when it shows the dialog; 0 is unknown
    int pixelHeight = 0;

    // For the message calls alone.
    DLGPROC procedure = nullptr;
    LONG_PTR user = 0;             // DWLP_USER
    LONG_PTR messageResult = 0;    // DWLP_MSGRESULT
    INT_PTR result = 0;            // as given to EndDialog
    bool ended = false;            // EndDialog was called
    bool hasDisabledOwner = false; // which is enabled again when this dialog ends
    bool needsPaint = false;
    int depth = 0; // of message handlers on the stack where the dialog's own loop runs
};

struct Window
{
    ~Window() { OverwriteText(); }
    // Before the text's memory is given back: a person may have typed a password.
    void OverwriteText() { explicit_bzero(text.data(), text.capacity() * sizeof(wchar_t)); }

    HWND handle = nullptr;
    WindowKind kind = WindowKind::Dialog;
    UINT id = 0;
    Window* parent = nullptr;                      // of a control its dialog, of a dialog its owner or null
    std::vector<std::unique_ptr<Window>> children; // in the template's order, which is the tab order

    DWORD style = 0; // as in the template; WS_VISIBLE and WS_DISABLED are the start values of the flags below
    DWORD extendedStyle = 0;
    DialogRect rect;
    bool visible = false; // of itself; a control is seen only while its dialog is, too
    bool enabled = true;  // likewise

    std::wstring
        text; // caption, label or content; an edit's lines end in "\r\n"; '&' marks a key in captions
    int check = BST_UNCHECKED;

    // Edit
    std::size_t lineCount = 1;
    std::size_t selectionStart = 0;
    std::size_t selectionEnd = 0;

    // Combo box
    std::vector<ComboItem> items;
    int selection = -1;

    std::unique_ptr<DialogState> dialog; // null for a control

    // The display's own object for this window. The display alone reads and writes it, and has let go of it
    // when Forget returns.
    void* shown = nullptr;
};

// The dialog that a window belongs to, or is.
inline Window& DialogOf(Window& window)
{
    return window.dialog ? window : *window.parent;
}
inline const Window& DialogOf(const Window& window)
{
    return window.dialog ? window : *window.parent;
}

// True when a person can use the control: it and its dialog are visible and enabled.
inline bool IsUsable(const Window& window)
{
    const Window& dialog = DialogOf(window);
    return window.visible && window.enabled && dialog.visible && dialog.enabled;
}

// The newest dialog that is not destroyed; null when there is none. A person's input belongs to it, as soon
// as it is visible.
PLATFORM_EXPORT Window* TopDialog();

} // namespace platform
