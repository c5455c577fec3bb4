// SPDX-License-Identifier: MIT
// The terminal display as a script has it.
#include "platform/dialogs/Display.h"
#include "tests/support/TestFolder.h"
#include "tests/dialogs/ScriptedDialog.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <thread>

using namespace testing;
using namespace std::string_literals;

// What the scenario wrote, which runs in a child process for a minute at most.
static std::string OutputOf(const std::function<void()>& scenario, const std::string& input,
                            const char* locale = "")
{
    const TestFolder folder;
    folder.Write("in", input);
    std::fflush(stdout); // the child must not say it again
    const pid_t process = fork();
    if (process == 0)
    {
        alarm(60);
        setenv("LC_ALL", locale, 1);
        setenv("LC_CTYPE", "C.UTF-8", 1);
        setenv("LANG", "de_DE.ISO-8859-15", 1);
        dup2(open((folder.Path() / "in").c_str(), O_RDONLY), STDIN_FILENO);
        dup2(creat((folder.Path() / "out").c_str(), 0600), STDOUT_FILENO);
        if (!platform::UseDisplay(platform::DisplayKind::Terminal))
            std::exit(1);
        scenario();
        std::exit(0);
    }
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_EQ(status, 0);
    return folder.Read("out");
}

// What a dialog wrote whose input has ended.
static std::string OutputInDialog(const std::function<void(HWND)>& body, const char* locale = "")
{
    return OutputOf([&] { InDialog(body); }, "", locale);
}

// Shows in its log every command that it gets and what its controls then hold.
static bool TraceCommands(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG)
    {
        for (const wchar_t* item : {L"Red", L"Green", L"Green-blue"})
            Send(dialog, IDC_CHOICE, CB_ADDSTRING, 0, item);
        Send(dialog, IDC_CHOICE, CB_SETCURSEL, 0);
        return false;
    }
    if (message != WM_COMMAND || HIWORD(wParam) != BN_CLICKED)
        return false;
    AddToLog(dialog, std::to_wstring(LOWORD(wParam)) + L" " + TextOf(GetDlgItem(dialog, IDC_LINE)) + L"|" +
                         TextOf(GetDlgItem(dialog, IDC_CHOICE)) + L"|" +
                         std::to_wstring(Send(dialog, IDC_BOX, BM_GETCHECK)) + L"\r\n");
    if (LOWORD(wParam) == IDCANCEL)
        EndDialog(dialog, IDCANCEL);
    return true;
}

static void OddText(HWND dialog)
{
    AddToLog(dialog, L"\x1b]0;title\a\x7f\x9b");
    AddToLog(dialog, L"31m\ttab\rback\r");
    AddToLog(dialog, L"\n\u00e4\u20ac\U0001F600\xDC00.\r\n");
}

const std::string kFields = "Label: \n"
                            "Box: off\n"
                            "1003: Red (of Red, Green, Green-blue)\n";
const std::string kOpened = "Controls\n" + kFields;
const std::string kCanceled = "2 |Red|0\n";

TEST(TerminalDisplay, ObeysLines)
{
    const std::string usage = "Not understood. Press: Push, Default. Fill: Label, Box, 1003\n";
    // One after the other in one dialog; 1004 shows what its controls hold.
    const std::pair<std::string, std::string> cases[] = {
        {"Push\n", "1004 |Red|0\n"},
        {"  pU \r\n", "1004 |Red|0\n"}, // any case, the beginning, blanks around
        {"\n\n", ""},
        {"Box\n", usage}, // a box is ticked, not pressed
        {"p=u\n", usage},
        {"Label=a = b \n1004\n", "1004 a = b |Red|0\n"}, // all after the first sign
        {"1001=x\nlab=y\n1004\n", "1004 y|Red|0\n"},
        {"1001=\xff\xc3\n1004\n", // what cannot be read is never changed
         "Not taken: that line is not text in UTF-8. LANG says what it is.\n1004 y|Red|0\n"},
        {"1001=a\0b\n1004\n"s,
         "Not taken: that line is not text in UTF-8. LANG says what it is.\n1004 y|Red|0\n"},
        {"1001=\xef\xbf\xbd\n1004\n", "1004 \xef\xbf\xbd|Red|0\n"}, // a character like others
        {"1001=\xc3\xa4\n1004\n", "1004 \xc3\xa4|Red|0\n"},
        {"1001=\n1002=on\n", "Box: on\n1002 |Red|1\n"},
        {"box=ON\nbox=off\n", "Box: off\n1002 |Red|0\n"}, // it was on already
        {"1003=green\n1004\n", "1004 |Green|0\n"},        // the whole name goes before a longer one
        {"1003=green-\n1004\n", "1004 |Green-blue|0\n"},
        {"1006=x\n", usage},               // hidden
        {"1000=x\n", usage},               // read-only
        {"1003=0\n1004", "1004 |Red|0\n"}, // the last line needs no end
    };
    std::string input;
    std::string output = kOpened;
    for (const auto& [lines, answer] : cases)
    {
        input += lines;
        output += answer;
    }
    EXPECT_EQ(OutputOf([] { ScriptedDialog{.serve = TraceCommands}.Run(); }, input), output + kCanceled);
}

TEST(TerminalDisplay, EndOfInputWaitsForTheHandlersThatWerePosted)
{
    const auto work = [](HWND dialog)
    {
        for (int i = 0; i < 5; ++i)
        {
            AddToLog(dialog, L"works\r\n");
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            Pump();
        }
    };
    EXPECT_EQ(OutputOf([&] { ScriptedDialog{.body = work, .serve = TraceCommands}.Run(); }, ""),
              kOpened + Repeated("works\n", 5) + kCanceled);
}

TEST(TerminalDisplay, LetsNoControlCharacterThroughAndWritesWhatTheLocaleCan)
{
    EXPECT_THAT(OutputInDialog(OddText), EndsWith(" ]0;title   31m\ttab back\n"
                                                  "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80\xef\xbf\xbd.\n"));
    EXPECT_THAT(OutputInDialog(OddText, "de_DE.ISO-8859-15"), EndsWith("\xe4\xa4???.\n"));
}

// Only boxes that can be seen and are not as they were are news.
TEST(TerminalDisplay, ShowsWhatTheProgramChanges)
{
    const auto changes = [](HWND dialog)
    {
        AddToLog(dialog, L"a line left open");
        SetWindowTextW(GetDlgItem(dialog, IDC_LINE), L"new");
        SetWindowTextW(GetDlgItem(dialog, IDC_LINE), L"new");
        SetWindowTextW(GetDlgItem(dialog, IDC_HIDDEN), L"unseen");
        Send(dialog, IDC_BOX, BM_SETCHECK, BST_CHECKED);
        AddToLog(dialog, L", its rest\r\n");
        SetWindowTextW(GetDlgItem(dialog, IDC_LOG), L"all anew\r\n");
    };
    EXPECT_THAT(OutputInDialog(changes),
                EndsWith("a line left open\nLabel: new\nBox: on\n, its rest\nall anew\n"));
}

TEST(TerminalDisplay, SleepsWhileThereIsNothingToDo)
{
    const auto idle = [](HWND dialog)
    {
        int held[2];
        dup2(pipe(held) == 0 ? held[0] : -1, STDIN_FILENO); // no input comes, and it does not end
        const std::clock_t before = std::clock();
        const DWORD start = GetTickCount();
        const int answer = MessageBoxTimeoutW(dialog, L"Waits", L"Idle", MB_OK, 0, 1100);
        const DWORD passed = GetTickCount() - start;
        const bool sleeps = std::clock() - before < CLOCKS_PER_SEC / 10 && passed >= 1100 && passed < 5000;
        AddToLog(dialog, answer == MB_TIMEDOUT && sleeps ? L"idle\r\n" : L"answered or busy\r\n");
    };
    EXPECT_THAT(OutputInDialog(idle), EndsWith("idle\n"));
}

TEST(TerminalDisplay, LosesNoMoreThanWhatCouldNotBeWritten)
{
    const auto fullForAMoment = [](HWND dialog)
    {
        const int out = dup(STDOUT_FILENO);
        dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
        AddToLog(dialog, L"lost\r\n");
        dup2(out, STDOUT_FILENO);
        AddToLog(dialog, L"written\r\n");
    };
    EXPECT_THAT(OutputInDialog(fullForAMoment), EndsWith(")\nwritten\n"));
}
