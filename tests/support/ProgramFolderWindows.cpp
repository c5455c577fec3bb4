// SPDX-License-Identifier: MIT
#include "tests/support/ProgramFolder.h"

#include <windows.h>

#include <cstdlib>
#include <set>

namespace
{

constexpr int kConsoleOutput = 1000;
constexpr DWORD kPollMilliseconds = 50;
// The report is over when the console's text has stood still for so long.
constexpr int kStillPolls = 16;

std::wstring Widen(const std::string& text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end())).wstring();
}

std::string Narrow(const std::wstring& text)
{
    const std::u8string bytes = std::filesystem::path(text).u8string();
    std::string narrow(bytes.begin(), bytes.end());
    std::erase(narrow, '\r');
    return narrow;
}

// A program that has slept for six seconds counts as hung until its box's loop begins: its answer is waited
// for.
std::wstring TextOf(HWND window)
{
    DWORD_PTR length = 0;
    if (!SendMessageTimeoutW(window, WM_GETTEXTLENGTH, 0, 0, SMTO_NORMAL, 5000, &length))
        return {};
    std::wstring text(length + 1, L'\0');
    DWORD_PTR copied = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), SMTO_NORMAL,
                        5000, &copied);
    text.resize(copied);
    return text;
}

// An argument as the C runtime of a Windows program takes it apart again.
std::wstring Quoted(const std::string& argument)
{
    const std::wstring wide = Widen(argument);
    if (wide.find_first_of(L" \t") == std::wstring::npos)
        return wide;
    const std::size_t separator = wide.find_first_of(L":=");
    if ((wide[0] == L'-' || wide[0] == L'/') && separator < wide.find(L' '))
        return wide.substr(0, separator + 1) + L'"' + wide.substr(separator + 1) + L'"';
    return L'"' + wide + L'"';
}

// The user: watches the program's dialogs, does what the input says and cancels what is left.
class User
{
public:
    User(DWORD process, const ProgramStart& start)
        : mProcess(process), mInput(start.input), mAwaited(Widen(start.awaited))
    {
    }

    // One look at the dialog on top.
    void Look()
    {
        const HWND dialog = Top();
        if (dialog == nullptr)
            return;
        if (GetDlgItem(dialog, kConsoleOutput) != nullptr)
            LookAtConsole(dialog);
        else
            LookAtOther(dialog);
    }

    std::string Seen() const { return mSeen + Narrow(mConsole); }

private:
    HWND Top() const
    {
        struct Search
        {
            DWORD process;
            HWND found;
        } search{mProcess, nullptr};
        EnumWindows(
            [](HWND window, LPARAM parameter) -> BOOL
            {
                auto* wanted = reinterpret_cast<Search*>(parameter);
                DWORD owner = 0;
                GetWindowThreadProcessId(window, &owner);
                if (owner != wanted->process || !IsWindowVisible(window) || !IsWindowEnabled(window))
                    return TRUE;
                wanted->found = window;
                return FALSE;
            },
            reinterpret_cast<LPARAM>(&search));
        return search.found;
    }

    void LookAtConsole(HWND dialog)
    {
        const std::wstring text = TextOf(GetDlgItem(dialog, kConsoleOutput));
        if (text.empty() || text != mConsole)
        {
            if (!text.empty())
                mConsole = text;
            mStill = 0;
            return;
        }
        if (++mStill >= kStillPolls && mConsole.find(mAwaited) != std::wstring::npos)
            Act(dialog);
    }

    void LookAtOther(HWND dialog)
    {
        if (mShown.insert(dialog).second)
        {
            mSeen += Narrow(TextOf(dialog)) + "\n";
            EnumChildWindows(
                dialog,
                [](HWND child, LPARAM parameter) -> BOOL
                {
                    wchar_t kind[32] = L"";
                    GetClassNameW(child, kind, 32);
                    // The place of a box's icon is a text without any.
                    const std::string text = Narrow(TextOf(child));
                    if (std::wstring(kind) == L"Static" && !text.empty())
                        *reinterpret_cast<std::string*>(parameter) += text + "\n";
                    return TRUE;
                },
                reinterpret_cast<LPARAM>(&mSeen));
            return;
        }
        Act(dialog);
    }

    void Act(HWND dialog)
    {
        mStill = 0;
        if (mNext == mInput.size())
        {
            // A question is answered with No, a box that only tells with OK, a dialog with Cancel.
            const int answer = GetDlgItem(dialog, IDNO) != nullptr ? IDNO : IDCANCEL;
            PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(answer), 0);
            return;
        }
        const std::string line = mInput[mNext++];
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos)
            Fill(GetDlgItem(dialog, std::stoi(line.substr(0, equals))), Widen(line.substr(equals + 1)));
        else
            Press(dialog, line);
    }

    // Writes into a box, or chooses from a list.
    static void Fill(HWND control, const std::wstring& text)
    {
        const auto parameter = reinterpret_cast<LPARAM>(text.c_str());
        wchar_t kind[32] = L"";
        GetClassNameW(control, kind, 32);
        if (std::wstring(kind) == L"ComboBox")
            SendMessageW(control, CB_SETCURSEL,
                         static_cast<WPARAM>(
                             SendMessageW(control, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), parameter)),
                         0);
        else
            SendMessageW(control, WM_SETTEXT, 0, parameter);
    }

    static void Press(HWND dialog, const std::string& caption)
    {
        for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT))
        {
            std::wstring text = TextOf(child);
            std::erase(text, L'&');
            if (text.rfind(Widen(caption), 0) == 0)
            {
                PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(GetDlgCtrlID(child)),
                             reinterpret_cast<LPARAM>(child));
                return;
            }
        }
    }

    DWORD mProcess;
    const std::vector<std::string>& mInput;
    std::wstring mAwaited;
    std::size_t mNext = 0;
    std::wstring mConsole;
    int mStill = 0;
    std::set<HWND> mShown;
    std::string mSeen; // boxes and other dialogs
};

} // namespace

bool RunsOnWindows()
{
    return true;
}

bool LeaveNamedEventsOfOthers()
{
    return true; // ctest runs one program that ships at a time
}

void SetVariable(const char* name, const char* value)
{
    _putenv((name + std::string("=") + (value != nullptr ? value : "")).c_str());
}

std::filesystem::path ProgramFolder::Program() const
{
    return Path() / "Tavo.exe";
}

ProgramOutcome ProgramFolder::Run(const ProgramStart& start) const
{
    std::wstring command = L'"' + Program().wstring() + L'"';
    for (const std::string& argument : start.arguments)
        command += L" " + Quoted(argument);
    for (const auto& [name, value] : start.environment)
        SetEnvironmentVariableW(Widen(name).c_str(), value.empty() ? nullptr : Widen(value).c_str());

    ProgramOutcome outcome;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, Path().c_str(),
                        &startup, &process))
        return outcome;

    User user(process.dwProcessId, start);
    const auto deadline = std::chrono::steady_clock::now() + start.limit;
    while (WaitForSingleObject(process.hProcess, kPollMilliseconds) == WAIT_TIMEOUT)
    {
        if (std::chrono::steady_clock::now() > deadline)
        {
            TerminateProcess(process.hProcess, 1);
            break;
        }
        user.Look();
    }
    outcome.ended = std::chrono::steady_clock::now() <= deadline;
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    outcome.exitCode = static_cast<int>(code);
    outcome.console = user.Seen();
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return outcome;
}
