// SPDX-License-Identifier: MIT
#include "platform/display/terminal/TerminalDisplay.h"

#include "platform/dialogs/WindowTable.h"
#include "platform/display/terminal/TerminalCommand.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>

namespace platform
{

namespace
{

// True when what a field shows has changed.
bool ChangesField(const Window& field, Change change)
{
    switch (change)
    {
    case Change::Text:
    case Change::TextAppended:
    case Change::Check:
        return true;
    case Change::Selection:
        return field.kind == WindowKind::ComboBox;
    default:
        return false;
    }
}

// For lines from a pipe or a file, or with output that nobody at a terminal sees.
class ScriptDisplay : public TerminalDisplay
{
public:
    void Show(Window& dialog) override
    {
        Introduce(dialog);
        for (const auto& control : dialog.children)
            if (IsField(*control))
                mOutput.WriteLine(DescribeFieldAndChoice(*control));
        // A script knows its buttons; in the journal of an unattended run they would be noise.
        if (dialog.dialog->isMessageBox || mInput.IsTerminal())
            if (const std::wstring buttons = DescribeButtons(dialog); !buttons.empty())
                mOutput.WriteLine(buttons);
    }

    void Hide(Window&) override { mInput.Reopen(); }

    void Wait(std::chrono::milliseconds time) override
    {
        if (ObeyNextLine())
            return;
        const bool isListening = TopUsableDialog() != nullptr && !TheQueue().HoldsInput();
        const bool canRead = isListening && mInput.CanRead();
        if (isListening && !canRead && mInput.IsTerminal())
            time = time == kForever ? kForegroundCheck : std::min(time, kForegroundCheck);
        if (!WaitForInput(time, canRead))
            return;
        mInput.Read();
        ObeyNextLine();
    }

    bool InputHasEnded() const override { return mInput.HasEnded(); }

protected:
    void WriteLog(std::wstring_view part) override { mOutput.WritePart(part); }
    void WriteLine(std::wstring_view line) override { mOutput.WriteLine(line); }
    std::wstring Describe(const Window& field) const override { return DescribeField(field); }

private:
    bool ObeyNextLine()
    {
        Window* const dialog = TopUsableDialog();
        if (dialog == nullptr || TheQueue().HoldsInput())
            return false;
        std::optional<std::wstring> line = mInput.TakeLine();
        if (!line)
            return false;
        const std::wstring answer =
            TerminalEncoding::IsText(*line) ? Obey(*dialog, *line) : mEncoding.Refusal();
        if (!answer.empty())
            mOutput.WriteLine(answer);
        Wipe(*line);
        return true;
    }

    TerminalInput mInput{mEncoding};
};

} // namespace

TerminalDisplay::TerminalDisplay() : mWakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

TerminalDisplay::~TerminalDisplay()
{
    close(mWakeUp);
}

void TerminalDisplay::Wake()
{
    eventfd_write(mWakeUp, 1);
}

void TerminalDisplay::Introduce(Window& dialog)
{
    if (dialog.shown == nullptr)
        WriteLine(dialog.text);
    dialog.shown = this;
    if (dialog.dialog->isMessageBox)
        for (const auto& control : dialog.children)
            if (control->kind == WindowKind::Label)
                WriteLine(control->text);
}

void TerminalDisplay::Refresh(Window& window, Change change, std::size_t oldLength)
{
    if (window.dialog || !window.visible)
        return;
    if (!IsLog(window))
    {
        if (DialogOf(window).visible && IsField(window) && ChangesField(window, change))
            WriteLine(Describe(window));
    }
    else if (change == Change::Text || change == Change::TextAppended)
    {
        Introduce(DialogOf(window));
        WriteLog(std::wstring_view(window.text).substr(change == Change::TextAppended ? oldLength : 0));
    }
}

Window* TerminalDisplay::TopUsableDialog()
{
    Window* const top = TopDialog();
    return top != nullptr && top->visible && top->enabled ? top : nullptr;
}

bool TerminalDisplay::WaitForInput(std::chrono::milliseconds time, bool canRead)
{
    std::array<pollfd, 2> streams = {{{mWakeUp, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
    const auto milliseconds = time == kForever ? -1 : static_cast<int>(std::min<long>(time.count(), INT_MAX));
    poll(streams.data(), canRead ? 2 : 1, milliseconds);
    if (streams[0].revents != 0)
    {
        eventfd_t count = 0;
        eventfd_read(mWakeUp, &count);
    }
    return streams[1].revents != 0;
}

std::unique_ptr<Display> MakeTerminalDisplay()
{
    const bool isPerson = isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
    return isPerson ? MakePersonDisplay() : std::make_unique<ScriptDisplay>();
}

} // namespace platform
