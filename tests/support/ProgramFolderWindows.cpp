// SPDX-License-Identifier: MIT
#include "tests/support/ProgramFolder.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/WindowProbe.h"
#include "text/Unicode.h"

#include <cstdlib>
#include <set>
#include <thread>

constexpr int kConsoleOutput = 1000;
constexpr DWORD kPollMilliseconds = 50;
// The report is over when the console's text has stood still for so long.
constexpr int kStillPolls = 16;

static std::string Shown(const std::wstring& text)
{
    std::string shown = text::ToUtf8(text);
    std::erase(shown, '\r');
    return shown;
}

// An argument as the C runtime of a Windows program takes it apart again.
static std::wstring Quoted(const std::wstring& argument)
{
    if (argument.find_first_of(L" \t") == std::wstring::npos)
        return argument;
    const std::size_t separator = argument.find_first_of(L":=");
    const bool isSwitch = argument[0] == L'-' || argument[0] == L'/';
    const std::size_t start = isSwitch && separator < argument.find(L' ') ? separator + 1 : 0;
    return argument.substr(0, start) + L'"' + argument.substr(start) + L'"';
}

// The user: watches the program's dialogs, does what the input says and cancels what is left.
class User
{
public:
    User(DWORD process, const ProgramStart& start) : mProcess(process), mStart(start) {}

    void Look()
    {
        HWND dialog = GetTopWindow(nullptr);
        for (DWORD owner = 0; dialog != nullptr; dialog = GetWindow(dialog, GW_HWNDNEXT))
        {
            GetWindowThreadProcessId(dialog, &owner);
            if (owner == mProcess && IsWindowVisible(dialog) && IsWindowEnabled(dialog))
                break;
        }
        if (GetDlgItem(dialog, kConsoleOutput) != nullptr)
            LookAtConsole(dialog);
        else if (dialog != nullptr)
            LookAtOther(dialog);
    }

    std::string Seen() const { return mSeen + mConsole; }

private:
    void LookAtConsole(HWND dialog)
    {
        const std::string text = Shown(TextOf(GetDlgItem(dialog, kConsoleOutput)));
        if (text.empty() || text != mConsole)
            mStill = 0;
        else if (++mStill >= kStillPolls && text.find(mStart.awaited) != std::string::npos)
            Act(dialog);
        if (!text.empty())
            mConsole = text;
    }

    void LookAtOther(HWND dialog)
    {
        if (!mShown.insert(dialog).second)
            return Act(dialog);
        mSeen += Shown(TextOf(dialog)) + "\n";
        for (HWND child = GetTopWindow(dialog); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        {
            wchar_t kind[32] = L"";
            GetClassNameW(child, kind, 32);
            // The place of a box's icon is a text without any.
            const std::string text = Shown(TextOf(child));
            if (std::wstring(kind) == L"Static" && !text.empty())
                mSeen += text + "\n";
        }
    }

    void Act(HWND dialog)
    {
        mStill = 0;
        if (mNext == mStart.input.size())
        {
            // A question is answered with No, a box that only tells with OK, a dialog with Cancel.
            PostMessageW(dialog, WM_COMMAND, GetDlgItem(dialog, IDNO) != nullptr ? IDNO : IDCANCEL, 0);
            return;
        }
        const std::wstring line = text::FromUtf8(mStart.input[mNext++]);
        const std::size_t equals = line.find(L'=');
        if (equals == std::wstring::npos)
            return Press(dialog, line);
        const HWND control = GetDlgItem(dialog, std::stoi(line.substr(0, equals)));
        // A list takes the one, a box the other.
        for (const UINT message : {CB_SELECTSTRING, WM_SETTEXT})
            SendMessageW(control, message, static_cast<WPARAM>(-1),
                         reinterpret_cast<LPARAM>(line.c_str() + equals + 1));
    }

    static void Press(HWND dialog, const std::wstring& caption)
    {
        for (HWND child = GetTopWindow(dialog); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        {
            std::wstring text = TextOf(child);
            std::erase(text, L'&');
            if (text.starts_with(caption))
                return static_cast<void>(PostMessageW(dialog, WM_COMMAND,
                                                      static_cast<WPARAM>(GetDlgCtrlID(child)),
                                                      reinterpret_cast<LPARAM>(child)));
        }
    }

    DWORD mProcess;
    const ProgramStart& mStart;
    std::size_t mNext = 0;
    std::string mConsole;
    int mStill = 0;
    std::set<HWND> mShown;
    std::string mSeen; // boxes and other dialogs
};

bool RunsOnWindows()
{
    return true;
}

bool EnterOwnNetwork()
{
    return true; // ctest runs one program that ships at a time
}

void SetVariable(const char* name, const char* value)
{
    _putenv((name + std::string("=") + (value != nullptr ? value : "")).c_str());
}

fs::path ProgramFolder::Program() const
{
    return Path() / "Tavo.exe";
}

void HoldForAMoment(const fs::path& path)
{
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    std::thread(
        [file]
        {
            Sleep(700);
            CloseHandle(file);
        })
        .detach();
}

ProgramOutcome ProgramFolder::Run(const ProgramStart& start) const
{
    std::wstring command = L'"' + Program().wstring() + L'"';
    for (const std::string& argument : start.arguments)
        command += L" " + Quoted(text::FromUtf8(argument));
    const ChildProcess program(command, Path(), false);
    User user(program.Id(), start);
    const auto deadline = std::chrono::steady_clock::now() + start.limit;
    ProgramOutcome outcome;
    while (outcome.ended && WaitForSingleObject(program.Handle(), kPollMilliseconds) == WAIT_TIMEOUT)
    {
        user.Look();
        outcome.ended = std::chrono::steady_clock::now() < deadline;
    }
    if (!outcome.ended)
        program.Kill();
    outcome.exitCode = static_cast<int>(program.ExitCode());
    outcome.console = user.Seen();
    return outcome;
}
