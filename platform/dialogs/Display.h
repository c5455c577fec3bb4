// SPDX-License-Identifier: MIT
// The seam between windows and what a person sees. Windows are plain objects (platform/dialogs/Window.h);
// a display shows them and reports what the person does (platform/dialogs/UserInput.h).
// Everything but Wake is called on the windows' thread only, and nothing here calls back into the program.
#pragma once

#include "platform/dialogs/Window.h"

#include <chrono>
#include <memory>

namespace platform
{

enum class Change
{
    Text,         // replaced: caption, label or content
    TextAppended, // an edit's text got longer at its end; what was there is the same
    Check,
    Items,     // of a combo box, with its selection
    Selection, // of a combo box, or of an edit's text
    Enabled,
    Icon,
};

class Display
{
public:
    Display() = default;
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    virtual ~Display() = default;

    // A dialog (or message box, see DialogState::isMessageBox) becomes visible, on top of the others, with
    // its controls in the state they are in now. Comes again when a hidden dialog is shown again.
    virtual void Show(Window& dialog) = 0;
    virtual void Hide(Window& dialog) = 0;

    // The dialog and its controls are about to go. Comes also for dialogs that were never shown.
    virtual void Forget(Window& dialog) = 0;

    // Something of a window has changed, of a dialog that may not be shown yet or any more. For
    // Change::TextAppended, `oldLength` is where the added part begins.
    virtual void Refresh(Window& window, Change change, std::size_t oldLength) = 0;

    // The control has the keyboard from now on.
    virtual void Focus(Window& control) = 0;

    // Scrolls an edit by a number of lines, downwards when positive, no further than its last line.
    virtual void ScrollLines(Window& edit, long lines) = 0;

    // Brings what is seen of the dialog up to date now.
    virtual void Update(Window& dialog) = 0;

    // Serves the display's own events, reports the person's input, and returns after the first input, a
    // Wake, or the time; at once with 0, and never by itself with kForever. It may return for no reason.
    virtual void Wait(std::chrono::milliseconds time) = 0;

    // Ends a Wait, or the next one if none is going on. From any thread.
    virtual void Wake() = 0;

    // True when the person has nothing more to say: input has ended. A dialog is then canceled, a message
    // box answered, once there are no messages left.
    virtual bool InputHasEnded() const { return false; }

    static constexpr std::chrono::milliseconds kForever{-1};
};

enum class DisplayKind
{
    Automatic, // Qt where a display server is there and the module loads, otherwise the terminal
    Qt,
    Terminal,
    None, // nothing shown, no input: for tests
};

// Chooses the display before the first window is made; for tests. False when there is no such display, or
// one is in use already. A program that does not call this gets Automatic.
PLATFORM_EXPORT bool UseDisplay(DisplayKind kind);

// A display of the kind; null when there is none. Defined where the displays are:
// platform/display/ChooseDisplay.cpp.
std::unique_ptr<Display> MakeDisplay(DisplayKind kind);

} // namespace platform
