// SPDX-License-Identifier: MIT
// The display of a machine without one. What the program writes into a read-only box of several lines goes to
// standard output as it comes. Lines of standard input drive the dialog on top:
//
//     Close            presses a button: its caption in any case, an unambiguous beginning of it, or its id
//     Port=389         fills a box, named by its label or its id
//     1013=on          ticks a check box, or not (off), named by its caption or its id
//     1003=NTLM        selects an item by its text or its index
//
// Anything else is answered with one line that says what can be pressed. End of input cancels the dialog.
// Where both streams are a terminal a person sits there and is asked instead, see PersonDisplay.cpp.
#pragma once

#include "platform/dialogs/Display.h"
#include "platform/display/terminal/TerminalStreams.h"

namespace platform
{

std::unique_ptr<Display> MakeTerminalDisplay();

// What a script and a person see alike.
class TerminalDisplay : public Display
{
public:
    TerminalDisplay();
    ~TerminalDisplay() override;

    void Forget(Window& dialog) override { dialog.shown = nullptr; }
    void Refresh(Window& window, Change change, std::size_t oldLength) override;
    void Focus(Window&) override {}
    void ScrollLines(Window&, long) override {}
    void Update(Window&) override {}
    void Wake() override;

protected:
    // The dialog's caption, which stands before all else that it has to say, and the text of a message box.
    void Introduce(Window& dialog);

    virtual void WriteLog(std::wstring_view part) = 0;
    virtual void WriteLine(std::wstring_view line) = 0;
    virtual std::wstring Describe(const Window& field) const = 0;

    // The dialog that takes input; null while there is none.
    static Window* TopUsableDialog();

    // Waits for a wake-up and, if it may be read, for input. True when there is some.
    bool WaitForInput(std::chrono::milliseconds time, bool canRead);

    // How often a process in the background looks whether it has come to the front.
    static constexpr std::chrono::milliseconds kForegroundCheck{500};

    TerminalEncoding mEncoding;
    TerminalOutput mOutput{mEncoding};
    const int mWakeUp;
};

std::unique_ptr<Display> MakePersonDisplay();

} // namespace platform
