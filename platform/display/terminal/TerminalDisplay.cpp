// SPDX-License-Identifier: MIT
#include "platform/display/terminal/TerminalDisplay.h"

#include "platform/display/terminal/TerminalCommand.h"
#include "platform/display/terminal/TerminalStreams.h"

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

// How often a process in the background looks whether it has come to the front.
constexpr std::chrono::milliseconds kForegroundCheck{500};

class TerminalDisplay : public Display
{
public:
    ~TerminalDisplay() override { close(mWakeUp); }

    void Show(Window& dialog) override
    {
        Introduce(dialog);
        for (const auto& control : dialog.children)
            if (IsField(*control))
                mOutput.WriteLine(DescribeFieldAndChoice(*control));
            else if (dialog.dialog->isMessageBox && control->kind == WindowKind::Label)
                mOutput.WriteLine(control->text);
        // A script knows its buttons; in the journal of an unattended run they would be noise.
        if (dialog.dialog->isMessageBox || mInput.IsTerminal())
            if (const std::wstring buttons = DescribeButtons(dialog); !buttons.empty())
                mOutput.WriteLine(buttons);
    }

    void Hide(Window&) override { mInput.Reopen(); }
    void Forget(Window& dialog) override { dialog.shown = nullptr; }

    void Refresh(Window& window, Change change, std::size_t oldLength) override
    {
        if (window.dialog || !window.visible)
            return;
        if (IsLog(window))
            AddToLog(window, change, oldLength);
        else if (DialogOf(window).visible && IsField(window) && ChangesField(window, change))
            mOutput.WriteLine(DescribeField(window));
    }

    void Focus(Window&) override {}
    void ScrollLines(Window&, long) override {}
    void Update(Window&) override {}

    void Wait(std::chrono::milliseconds time) override
    {
        if (ObeyNextLine())
            return;
        const bool isListening = TopUsableDialog() != nullptr;
        const bool canRead = isListening && mInput.CanRead();
        if (canRead && time.count() != 0 && mHasPrompt)
            mOutput.ShowPrompt();
        if (isListening && !canRead && mInput.IsTerminal())
            time = time == kForever ? kForegroundCheck : std::min(time, kForegroundCheck);

        std::array<pollfd, 2> streams = {{{mWakeUp, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
        const auto milliseconds =
            time == kForever ? -1 : static_cast<int>(std::min<long>(time.count(), INT_MAX));
        poll(streams.data(), canRead ? 2 : 1, milliseconds);
        if (streams[0].revents != 0)
        {
            eventfd_t count = 0;
            eventfd_read(mWakeUp, &count);
        }
        if (streams[1].revents != 0)
        {
            mInput.Read();
            ObeyNextLine();
        }
    }

    void Wake() override { eventfd_write(mWakeUp, 1); }

    bool InputHasEnded() const override { return mInput.HasEnded(); }

private:
    // The caption stands before all else that the dialog has to say.
    void Introduce(Window& dialog)
    {
        if (dialog.shown == nullptr)
            mOutput.WriteLine(dialog.text);
        dialog.shown = this;
    }

    void AddToLog(Window& log, Change change, std::size_t oldLength)
    {
        if (change != Change::Text && change != Change::TextAppended)
            return;
        Introduce(DialogOf(log));
        mOutput.WritePart(std::wstring_view(log.text).substr(change == Change::TextAppended ? oldLength : 0));
    }

    // True when what a field shows has changed.
    static bool ChangesField(const Window& field, Change change)
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

    static Window* TopUsableDialog()
    {
        Window* const top = TopDialog();
        return top != nullptr && top->visible && top->enabled ? top : nullptr;
    }

    bool ObeyNextLine()
    {
        Window* const dialog = TopUsableDialog();
        if (dialog == nullptr)
            return false;
        const std::optional<std::wstring> line = mInput.TakeLine();
        if (!line)
            return false;
        mOutput.LeavePrompt();
        if (const std::wstring answer = Obey(*dialog, *line); !answer.empty())
            mOutput.WriteLine(answer);
        return true;
    }

    const TerminalEncoding mEncoding;
    TerminalOutput mOutput{mEncoding};
    TerminalInput mInput{mEncoding};
    const bool mHasPrompt = mInput.IsTerminal() && isatty(STDOUT_FILENO) != 0;
    const int mWakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
};

} // namespace

std::unique_ptr<Display> MakeTerminalDisplay()
{
    return std::make_unique<TerminalDisplay>();
}

} // namespace platform
