// SPDX-License-Identifier: MIT
// The terminal where a person sits. What is asked, see TerminalConversation.h; how a line is edited, see
// LineEditor.h. What was read is not drawn again, but for the line that is being typed and one that tells how
// far an upload is: a screen reader follows.
#include "platform/dialogs/WindowTable.h"
#include "platform/display/terminal/LineEditor.h"
#include "platform/display/terminal/TerminalCommand.h"
#include "platform/display/terminal/TerminalConversation.h"
#include "platform/display/terminal/TerminalDisplay.h"
#include "platform/display/terminal/TerminalModes.h"
#include "platform/display/terminal/UploadProgress.h"
#include "text/Unicode.h"

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <utility>

namespace platform
{

namespace
{

constexpr wchar_t kEndOfInput = L'\x04';
constexpr wchar_t kTab = L'\t';
constexpr std::chrono::milliseconds kSequencePause{100}; // within what one key sends
constexpr std::chrono::seconds kProgressPause{1};
constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kUsualColour = "\x1b[0m";
constexpr std::string_view kToTheLineAbove = "\x1b[A\r\x1b[K";

bool IsFailure(std::wstring_view line)
{
    constexpr std::array<std::wstring_view, 4> kSigns = {L"failed", L"Failed", L"Error - ", L"Err="};
    return std::ranges::any_of(kSigns, [line](std::wstring_view sign)
                               { return line.find(sign) != std::wstring_view::npos; });
}

std::size_t Columns()
{
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

// The longest beginning that all have, in any case, as the first of them writes it.
std::wstring CommonBeginning(const std::vector<std::wstring>& lines)
{
    std::wstring common = lines.empty() ? L"" : lines.front();
    for (const std::wstring& line : lines)
    {
        const std::wstring one = Lower(common);
        const std::wstring other = Lower(line);
        common.resize(static_cast<std::size_t>(std::ranges::mismatch(one, other).in1 - one.begin()));
    }
    return common;
}

// The lines of the terminal itself, where its cursor cannot be moved.
class PlainLine : public LineEditor
{
public:
    explicit PlainLine(LineEditorHost& host) : mHost(host) {}

    void Begin(std::wstring prompt) override
    {
        mPrompt = std::move(prompt);
        Wipe(mText);
        Show();
    }
    bool Take(wchar_t key) override
    {
        if (key != L'\n')
            AddToSecret(mText, key); // of a box that the line names
        return key == L'\n';
    }
    std::wstring Text() const override { return mText; }
    void Replace(const std::wstring&) override {}
    void Hide() override { mHost.Draw("\n"); }
    void Show() override { mHost.Draw(text::ToUtf8(mPrompt)); }
    void Remember(const std::wstring&) override {}
    bool MovesCursor() const override { return false; }
    bool HasColours() const override { return false; }

private:
    LineEditorHost& mHost;
    std::wstring mPrompt;
    std::wstring mText;
};

class PersonDisplay : public TerminalDisplay, public LineEditorHost
{
public:
    void Show(Window& dialog) override
    {
        DropQuestion();
        Introduce(dialog);
        mConversation.Open(dialog);
        if (dialog.dialog->isMessageBox)
            return;
        if (Select(dialog, CanFill).empty())
            WriteLine(DescribeButtons(dialog));
        if (!std::exchange(mHasHinted, true))
            WriteLine(L"help lists what can be pressed.");
    }

    void Hide(Window& dialog) override
    {
        DropQuestion();
        mEnded = false;
        if (!dialog.dialog->isMessageBox)
            WriteLine(PlainCaption(dialog.text) + L" is closed.");
    }

    void Forget(Window& dialog) override
    {
        TerminalDisplay::Forget(dialog);
        mConversation.Forget(dialog);
        if (mAskedOf == &dialog)
            DropQuestion();
    }

    void Focus(Window& control) override
    {
        mConversation.Focus(control);
        if (mAskedOf == &DialogOf(control))
            DropQuestion();
    }

    void Wait(std::chrono::milliseconds time) override
    {
        Window* const dialog = TopUsableDialog();
        const bool isListening = dialog != nullptr && !InputHasEnded() && !TheQueue().HoldsInput();
        const bool canRead = isListening && IsInForeground();
        if (canRead)
        {
            if (TakeKeys(*dialog))
                return;
            if (time.count() != 0)
                Ask(*dialog);
        }
        else if (isListening)
            time = time == kForever ? kForegroundCheck : std::min(time, kForegroundCheck);
        if (!WaitForInput(time, canRead) || !canRead)
            return;
        ReadKeys();
        TakeKeys(*dialog);
    }

    bool InputHasEnded() const override { return mEnded || mConversation.HasQuit(); }

protected:
    void WriteLine(std::wstring_view line) override
    {
        EndProgress();
        mOutput.WriteLine(line);
    }

    void WriteLog(std::wstring_view part) override
    {
        const auto now = Clock::now();
        const std::optional<std::wstring> progress =
            Editor().MovesCursor() ? mProgress.Describe(part, now) : std::nullopt;
        if (progress)
        {
            mProgressLine = *progress;
            if (mProgress.IsComplete() || now - mProgressTime >= kProgressPause)
                ShowProgress(now);
            return;
        }
        EndProgress();
        while (!part.empty())
        {
            const std::wstring_view line = part.substr(0, part.find(L'\n'));
            const std::wstring_view end = part.substr(line.size(), 1);
            const bool isRed = Editor().HasColours() && IsFailure(line);
            if (isRed)
                mOutput.Draw(kRed);
            mOutput.WritePart(line);
            if (isRed)
                mOutput.Draw(kUsualColour);
            mOutput.WritePart(end);
            part.remove_prefix(line.size() + end.size());
        }
    }

    std::wstring Describe(const Window& field) const override { return DescribeSafely(field); }

private:
    std::optional<wchar_t> NextOfKey() override
    {
        if (mKeys.empty() && WaitForInput(kSequencePause, true))
            ReadKeys();
        if (mKeys.empty())
            return std::nullopt;
        return TakeKey();
    }

    void Draw(std::string_view utf8) override { mOutput.Draw(utf8); }

    // Made when it is first needed, and in the foreground: it sets the terminal's modes.
    LineEditor& Editor()
    {
        if (mEditor == nullptr && IsInForeground())
        {
            SetTerminalMode(TerminalMode::Keys, mWakeUp);
            mEditor = MakeLineEditor(*this);
            if (mEditor == nullptr)
            {
                SetTerminalMode(TerminalMode::AsFound, mWakeUp);
                mEditor = std::make_unique<PlainLine>(*this);
            }
        }
        if (mEditor != nullptr)
            return *mEditor;
        return mPlain;
    }

    void SetMode()
    {
        const TerminalMode lines = mQuestion->isSecret ? TerminalMode::Silent : TerminalMode::AsFound;
        SetTerminalMode(Editor().MovesCursor() ? TerminalMode::Keys : lines, mWakeUp);
    }

    // Shows the question that the dialog has, if it does not stand there.
    void Ask(Window& dialog)
    {
        if (TerminalWasLeft())
            mIsShown = false;
        if (mIsShown && mAskedOf == &dialog)
            return;
        EndProgress();
        mOutput.EndLine();
        if (mQuestion && mAskedOf == &dialog)
        {
            SetMode();
            Editor().Show();
        }
        else
        {
            mQuestion = mConversation.Ask(dialog);
            mAskedOf = &dialog;
            SetMode();
            if (!mQuestion->lines.empty())
                mOutput.WritePart(mQuestion->lines);
            Editor().Begin(mQuestion->prompt);
        }
        mIsShown = true;
    }

    void HideQuestion()
    {
        if (std::exchange(mIsShown, false))
            Editor().Hide();
    }

    void DropQuestion()
    {
        HideQuestion();
        Wipe(mSecret);
        mQuestion.reset();
        mAskedOf = nullptr;
    }

    void ReadKeys()
    {
        std::array<char, 4096> buffer;
        const ssize_t count = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count > 0)
        {
            std::wstring keys = mEncoding.Decode({buffer.data(), static_cast<std::size_t>(count)}, false);
            std::ranges::copy(keys, std::back_inserter(mKeys));
            explicit_bzero(buffer.data(), buffer.size());
            Wipe(keys);
        }
        else if (count == 0 || (errno != EINTR && errno != EAGAIN))
            EndInput();
    }

    wchar_t TakeKey()
    {
        const wchar_t key = std::exchange(mKeys.front(), L'\0');
        mKeys.pop_front();
        return key == L'\r' ? L'\n' : key;
    }

    // Takes what was typed up to the end of a line. True when it meant something.
    bool TakeKeys(Window& dialog)
    {
        while (!mKeys.empty())
        {
            Ask(dialog);
            if (TakeKey(dialog, TakeKey()))
                return true;
        }
        return false;
    }

    bool TakeKey(Window& dialog, wchar_t key)
    {
        LineEditor& editor = Editor();
        if (key == kEndOfInput && editor.Text().empty() && mSecret.empty())
        {
            EndInput();
            return true;
        }
        if (mQuestion->isSecret)
        {
            if (key != L'\n')
            {
                AddToSecret(mSecret, key);
                return false;
            }
            mOutput.Draw("\n");
            std::wstring text = TypedText(mSecret);
            Answer(dialog, text);
            Wipe(text);
            return true;
        }
        if (key == kTab)
        {
            Complete(dialog);
            return false;
        }
        if (editor.Take(key))
        {
            std::wstring line = editor.Text();
            if (!Trim(line).empty())
                editor.Remember(line);
            Answer(dialog, line);
            Wipe(line);
            return true;
        }
        if (!editor.MovesCursor())
            return false;
        // What would follow is not to be seen.
        const std::wstring line = editor.Text();
        if (!mConversation.BeginsSecret(dialog, line))
            return false;
        HideQuestion();
        Answer(dialog, line);
        return true;
    }

    void Answer(Window& dialog, const std::wstring& line)
    {
        mIsShown = false;
        mProgressStands = false;
        const std::wstring answer =
            TerminalEncoding::IsText(line) ? mConversation.Answer(dialog, line) : mEncoding.Refusal();
        DropQuestion();
        if (!answer.empty())
            WriteLine(answer);
    }

    void Complete(const Window& dialog)
    {
        LineEditor& editor = Editor();
        const std::wstring text = editor.Text();
        const std::vector<std::wstring> lines = mConversation.Completions(dialog, text);
        const std::wstring common = CommonBeginning(lines);
        if (lines.empty() || !editor.MovesCursor())
            return mOutput.Draw("\a");
        HideQuestion();
        if (common.size() > text.size() || lines.size() == 1)
            editor.Replace(common);
        else
            WriteLine(Join(lines));
    }

    void EndInput()
    {
        mEnded = true;
        mIsShown = false;
        DropQuestion();
        mOutput.Draw("\n");
    }

    void ShowProgress(Clock::time_point now)
    {
        HideQuestion();
        if (mProgressStands)
            mOutput.Draw(kToTheLineAbove);
        mOutput.WriteLine(std::wstring_view(mProgressLine).substr(0, Columns() - 1));
        mProgressLine.clear();
        mProgressTime = now;
        mProgressStands = true;
    }

    // The line that stands there stays: something else is to be written.
    void EndProgress()
    {
        HideQuestion();
        if (!mProgressLine.empty())
            ShowProgress(Clock::now());
        mProgressStands = false;
    }

    Conversation mConversation;
    PlainLine mPlain{*this};
    std::unique_ptr<LineEditor> mEditor;
    std::deque<wchar_t> mKeys; // typed, and not taken yet
    std::optional<Question> mQuestion;
    Window* mAskedOf = nullptr;
    bool mIsShown = false; // the question and what was typed are on the screen
    std::wstring mSecret;  // the keys of one
    bool mEnded = false;
    bool mHasHinted = false;
    UploadProgress mProgress;
    std::wstring mProgressLine; // not shown yet
    Clock::time_point mProgressTime;
    bool mProgressStands = false; // just above the cursor
};

} // namespace

std::unique_ptr<Display> MakePersonDisplay()
{
    return std::make_unique<PersonDisplay>();
}

} // namespace platform
