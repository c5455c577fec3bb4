// SPDX-License-Identifier: MIT
// A person at a terminal: keys are pressed, and what is then seen is compared.
#include "platform/dialogs/Display.h"
#include "platform/display/terminal/UploadProgress.h"
#include "tests/dialogs/ScriptedDialog.h"
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <numeric>
#include <regex>
#include <thread>

using namespace testing;

// A terminal of 24 rows, as tmux(1) emulates it, in which a person's keys are pressed.
class TerminalScreen
{
public:
    // Runs a line of the shell, with TERM as given unless `variables` ("NAME=value ...") say otherwise.
    explicit TerminalScreen(const std::string& line, const std::string& variables = "", int columns = 80)
    {
        const std::string setting = "env -u DISPLAY -u WAYLAND_DISPLAY -u NO_COLOR LC_ALL=C.UTF-8 "
                                    "TERM=xterm-256color " +
                                    variables + " sh -c " + Quoted(line);
        // Nothing is written before it is recorded.
        Tmux("new-session -d -y 24 -x " + std::to_string(columns) + " " +
             Quoted("read go; " + setting + "; sleep 60"));
        Tmux("pipe-pane " + Quoted("cat >'" + mFolder.Path().string() + "/recorded'"));
        Press("Enter");
    }
    // What still runs in it ends first: LeakSanitizer's search hangs where a terminal goes meanwhile.
    ~TerminalScreen()
    {
        Tmux("run-shell 'kill -KILL -#{pane_pid}'");
        HangUp();
    }
    void HangUp() const { Tmux("kill-server"); }

    // Characters as they are; keys by tmux's names ("Enter", "Up", "C-d") between words; whole lines.
    void Type(const std::string& text) const { Tmux("send-keys -l -- " + Quoted(text)); }
    void Press(const std::string& keys) const { Tmux("send-keys " + keys); }
    void Enter(const std::vector<std::string>& lines) const
    {
        for (const std::string& line : lines)
        {
            Type(line);
            Press("Enter");
        }
    }

    // Waits until it is seen, for 20 s at least, and gives all that is seen from the last `from` on, with
    // what has scrolled away, each row without blanks at its end.
    std::string WaitFor(const std::string& text, const std::string& from = "") const
    {
        std::string seen, part;
        for (int tries = 0; tries < 400; ++tries)
        {
            seen = Tmux("capture-pane -p -S -");
            seen.resize(seen.find_last_not_of('\n') + 1);
            const std::size_t start = from.empty() ? 0 : seen.rfind(from);
            part = start == std::string::npos ? "" : seen.substr(start);
            if (part.find(text) != std::string::npos)
                return part;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        ADD_FAILURE() << '"' << text << "\" is not seen:\n" << seen;
        return part;
    }
    // All rows with the colours as sequences.
    std::string SeenInColour() const { return Tmux("capture-pane -e -p -S -"); }
    // Every byte that was written to the terminal.
    std::string Recorded() const { return mFolder.Read("recorded"); }

private:
    static std::string Quoted(const std::string& text)
    {
        return "'" + std::regex_replace(text, std::regex("'"), "'\\''") + "'";
    }

    std::string Tmux(const std::string& arguments) const
    {
        return Said("tmux -u -f /dev/null -S '" + mFolder.Path().string() + "/socket' " + arguments +
                    " 2>&1");
    }

    TestFolder mFolder{"tavo-screen-"};
};

// What the terminal says about itself after the program's end.
static std::string ThenItsEcho(const std::string& line)
{
    return line + "; stty -a | grep -ow -e '-*echo' -e '-*icanon'";
}

// A test of this program as what runs in a terminal: its dialogs, and nothing else.
static std::string Scene(const std::string& name)
{
    return fs::read_symlink("/proc/self/exe").string() +
           " --gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=Scene.DISABLED_" + name;
}

TEST(Scene, DISABLED_Password)
{
    ASSERT_TRUE(platform::UseDisplay(platform::DisplayKind::Terminal));
    ScriptedDialog script;
    script.serve = [](HWND dialog, UINT message, WPARAM wParam, LPARAM)
    {
        if (message == WM_INITDIALOG)
            SetWindowTextW(GetDlgItem(dialog, -1), L"Password:");
        if (message == WM_COMMAND && LOWORD(wParam) == IDC_PUSH)
            AddToLog(dialog, L"It was (" + TextOf(GetDlgItem(dialog, IDC_LINE)) + L")\r\n");
        if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL)
            EndDialog(dialog, 0);
        return false;
    };
    script.Run();
}

TEST(Scene, DISABLED_Failures)
{
    ASSERT_TRUE(platform::UseDisplay(platform::DisplayKind::Terminal));
    InDialog(
        [](HWND dialog)
        {
            for (const wchar_t* line :
                 {L"it failed", L"Failed too", L"Error - one", L"Err=81 as well", L"no error"})
                AddToLog(dialog, line + std::wstring(L"\r\n"));
            MessageBoxW(dialog, L"Sure?", L"Question", MB_YESNO);
        });
}

TEST(Scene, DISABLED_Upload)
{
    ASSERT_TRUE(platform::UseDisplay(platform::DisplayKind::Terminal));
    InDialog(
        [](HWND dialog)
        {
            for (int percent = 1; percent <= 100; ++percent)
            {
                AddToLog(dialog, L"[5ms] FTP_LOG: " + std::to_wstring(percent) + L"% done, " +
                                     std::to_wstring(percent * 100000) + L" sent\r\n");
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
            AddToLog(dialog, L"[6ms] FTP_LOG: Successfully sent logs to Support\r\n");
        });
}

TEST(PersonAtATerminal, IsAskedBoxByBoxAndToldWhatCloses)
{
    const ProgramFolder folder;
    const TerminalScreen screen(ThenItsEcho(folder.Program()));
    EXPECT_THAT(screen.WaitFor("\n>"), EndsWith("Press: Close, LDAP ..., FTP Logs to Support, CRC64\n"
                                                "help lists what can be pressed.\n>"));
    // Typed faster than it is asked for.
    screen.Enter({"ldap", "  127.0.0.1 ", "1", "", "\u00fc\u20ac admin", "secret", "3", "show", "port", "x",
                  "OK", "", "2", "password", "", "Cancel"});
    EXPECT_EQ(screen.WaitFor("is closed.", "> ldap"), "> ldap\n"
                                                      "DiagnosticsDlg\n"
                                                      "LDAP Server:   127.0.0.1\n"
                                                      "Port [389]: 1\n"
                                                      "Domain:\n"
                                                      "Username: \u00fc\u20ac admin\n"
                                                      "Password (not shown):\n"
                                                      "Authentication:\n"
                                                      "  0  Try all\n"
                                                      "  1  Simple bind - SSL\n"
                                                      "  2  Simple bind - plain text\n"
                                                      "  3  NTLM\n"
                                                      "  4  Digest\n"
                                                      "  5  DPA\n"
                                                      "  6  Negotiate\n"
                                                      "Authentication [Try all]: 3\n"
                                                      "OK, Cancel, or a box to change [OK]: show\n"
                                                      "DiagnosticsDlg\n"
                                                      "LDAP Server: 127.0.0.1\n"
                                                      "Port: 1\n"
                                                      "Domain:\n"
                                                      "Username: \u00fc\u20ac admin\n"
                                                      "Password: ......\n"
                                                      "Authentication: NTLM\n"
                                                      "Press: OK, Cancel\n"
                                                      "OK, Cancel, or a box to change [OK]: port\n"
                                                      "Port [1]: x\n"
                                                      "OK, Cancel, or a box to change [OK]: OK\n"
                                                      "Tavo\n"
                                                      "Please enter a positive integer.\n"
                                                      "OK [OK]:\n"
                                                      "Port [x]: 2\n"
                                                      "OK, Cancel, or a box to change [OK]: password\n"
                                                      "Password (not shown) [......]:\n"
                                                      "OK, Cancel, or a box to change [OK]: Cancel\n"
                                                      "DiagnosticsDlg is closed.\n"
                                                      ">");
    // Nothing is kept, and what a box holds goes into the test without the blanks around it.
    screen.Enter({"LDAP", "Port=1", " localhost", "", "", "", "NT", ""});
    EXPECT_THAT(screen.WaitFor("END TEST", "> LDAP"),
                AllOf(HasSubstr("LDAP Server: Port=1\nLDAP Server:  localhost\n"),
                      HasSubstr(" Server: localhost\n")));
    screen.Enter({"quit"});
    EXPECT_THAT(screen.WaitFor("icanon\necho"), EndsWith("> quit\nZT Diagnostics is closed.\nicanon\necho"));
}

TEST(PersonAtATerminal, NeverSeesAPassword)
{
    for (const bool edits : {true, false}) // with the editor's library and without
    {
        const ProgramFolder folder;
        if (!edits)
            fs::remove(folder.Path() / "libtavoedit.so");
        const TerminalScreen screen(ThenItsEcho(folder.Program()));
        screen.WaitFor("\n>");
        screen.Enter({"LDAP", "dc", "", "", "admin"});
        if (!edits)
            screen.WaitFor("not shown"); // the terminal shows what is typed before it is asked for
        screen.Enter({"s3cret", "", edits ? "Password=s3cret" : "show", "show", "Cancel"});
        screen.WaitFor("is closed");
        if (edits)
        {
            screen.Press("Up Up Up Up Up Up");
            screen.WaitFor("> LDAP", "is closed");
            screen.Press("C-u");
        }
        screen.Press("C-d");
        EXPECT_THAT(screen.WaitFor("icanon\necho"),
                    AllOf(HasSubstr("Password: ......"), EndsWith("icanon\necho")));
        EXPECT_THAT(screen.Recorded() + folder.Log(), Not(HasSubstr("s3cret")));
    }
}

TEST(PersonAtATerminal, LeavesNoPieceOfAPasswordInMemory)
{
    if (getuid() != 0)
        GTEST_SKIP() << "needs root to read the memory of another process";
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer keeps what is given back";
#endif
    std::vector<std::string> pieces;
    for (int number = 10; number < 30; ++number)
        pieces.push_back("piece" + std::to_string(number));
    const std::string password = std::accumulate(pieces.begin(), pieces.end(), std::string());
    for (const bool edits : {true, false})
    {
        const ProgramFolder folder;
        // So wide that no prompt is broken where the program comes to all of them late.
        const TerminalScreen screen(folder.Program(), edits ? "" : "TERM=dumb", 300);
        screen.WaitFor("\n>");
        screen.Enter({"LDAP", "dc", "", "", edits ? "admin" : "Password=" + password,
                      edits ? password : "admin", "", "Cancel"});
        screen.WaitFor("is closed.\n>");
        const std::string memory = MemoryOf(std::stoi(Said("pgrep -f ^" + folder.Program().string())));
        const auto holds = [&memory](const std::string& text)
        {
            return memory.find(text) != std::string::npos ||
                   memory.find(Widened(text, sizeof(char16_t))) != std::string::npos ||
                   memory.find(Widened(text, sizeof(wchar_t))) != std::string::npos;
        };
        EXPECT_TRUE(holds("is closed"));
        for (const std::string& piece : pieces)
            EXPECT_FALSE(holds(piece)) << piece << edits;
    }
}

TEST(PersonAtATerminal, TypesEveryCharacterOfAPasswordAndNoOther)
{
    for (const char* terminal : {"xterm-256color", "dumb", "from-elsewhere"})
    {
        const TerminalScreen screen(Scene("Password"), std::string("TERM=") + terminal);
        screen.WaitFor("not shown");
        screen.Type("wrong");
        screen.Press("C-u");
        screen.Type(" p\u00e4O[s;=sx");
        screen.Press("BSpace Left Tab Home F5 Up");
        screen.Enter({"w ", "", "", "Push"});
        EXPECT_THAT(screen.WaitFor("It was"), HasSubstr("It was ( p\u00e4O[s;=sw )"));
        EXPECT_EQ(screen.Recorded().find("s;"), screen.Recorded().rfind("s;")) << screen.Recorded();
        screen.Press("C-d");
    }
}

TEST(PersonAtATerminal, EditsCompletesAndIsHelped)
{
    const ProgramFolder folder;
    const TerminalScreen screen(folder.Program(), "TERM=from-elsewhere"); // which moves the cursor like most
    screen.WaitFor("\n>");
    // Home and End are also those of other terminals.
    screen.Press("e Escape [7~ h End l Home Escape [8~ F5 p Escape [34~ Enter");
    screen.Press("l Space pa Home C-Right Delete d Enter");
    screen.Press("s Space ort C-Left BSpace p Enter");
    screen.Enter({"xxxhelp", "sow", "qzzt", "hqelpq"});
    screen.Press("o Enter");
    screen.Press("sUp Tab C-u crc6 Left Tab Enter");
    screen.Enter({" two blanks "});
    screen.Press("o Tab f Tab Enter Enter");
    screen.Press("w Tab = Tab n Enter");
    screen.Enter({"?", "hex=1", "i", "i"});
    screen.Press("Up Up Enter");
    screen.Press("C-d");
    EXPECT_THAT(screen.WaitFor("Dialog is closed", "> help"),
                StartsWith("> help\n"
                           "Press: Close, LDAP ..., FTP Logs to Support, CRC64\n"
                           "A name, or any part of it that no other has, presses a button.\n"
                           "show: what the boxes hold. quit: ends the program. Ctrl-D: closes this dialog.\n"
                           "Tab completes a name, the arrow keys bring back what was typed.\n"
                           "> ldpa\n"
                           "Not understood, but near \"LDAP ...\": help lists what can be pressed.\n"
                           "> sport\n"
                           "Not understood: help lists what can be pressed.\n"
                           "> xxxhelp\n"
                           "Not understood, but near \"help\": help lists what can be pressed.\n"
                           "> sow\n"
                           "Not understood, but near \"show\": help lists what can be pressed.\n"
                           "> qzzt\n"
                           "Not understood, but near \"quit\": help lists what can be pressed.\n"
                           "> hqelpq\n"
                           "Not understood, but near \"help\": help lists what can be pressed.\n"
                           "> o\n"
                           "Which one: Close, FTP Logs to Support?\n"
                           "> CRC64\n"
                           "Dialog\n"
                           "Input:  two blanks\n"
                           "on, off\n"
                           "Wide characters (on, off) [on]: off\n"
                           "Wide characters: off\n"
                           "OK, Cancel, Get CRC64, or a box to change [Get CRC64]:\n"
                           "CRC64: 9378702243592935650\n"
                           "CRC64 Hex: 8227D800038418E2\n"
                           "OK, Cancel, Get CRC64, or a box to change [OK]: Wide characters=on\n"
                           "Wide characters: on\n"
                           "OK, Cancel, Get CRC64, or a box to change [Get CRC64]: ?\n"
                           "Press: OK, Cancel, Get CRC64\n"
                           "Fill: Input, Wide characters, CRC64, CRC64 Hex\n"
                           "A name, or any part of it that no other has, presses a button or asks for\n"
                           "a box; name=text fills one. Enter takes what stands in [].\n"
                           "show: what the boxes hold. quit: ends the program. Ctrl-D: closes this dialog.\n"
                           "Tab completes a name, the arrow keys bring back what was typed.\n"
                           "OK, Cancel, Get CRC64, or a box to change [Get CRC64]: hex=1\n"
                           "OK, Cancel, Get CRC64, or a box to change [Get CRC64]: i\n"
                           "Input [ two blanks ]: i\n"
                           "OK, Cancel, Get CRC64, or a box to change [Get CRC64]: hex=1\n"
                           "OK, Cancel, Get CRC64, or a box to change [Get CRC64]:\n"
                           "Dialog is closed."));

    // A question of two rows is taken away whole.
    const TerminalScreen narrow(folder.Program(), "", 30);
    narrow.WaitFor("\n>");
    narrow.Enter({"CRC64", "", ""});
    narrow.Press("wid= Tab Tab C-u C-d");
    EXPECT_EQ(narrow.WaitFor("Dialog is closed.", "Wide"), "Wide characters (on, off) [on]\n"
                                                           ":\n"
                                                           "wid=on, wid=off\n"
                                                           "OK, Cancel, Get CRC64, or a bo\n"
                                                           "x to change [Get CRC64]:\n"
                                                           "Dialog is closed.\n"
                                                           ">");
}

TEST(PersonAtATerminal, SeesFailuresInRedUnlessNoColourIsWanted)
{
    const std::vector<std::string> failures = {"it failed", "Failed too", "Error - one", "Err=81 as well"};
    // A terminal of eight colours, one where none is wanted, two that have none.
    for (const std::string wish : {"NO_COLOR= TERM=xterm", "NO_COLOR=1", "TERM=vt100", "TERM=dumb"})
    {
        const TerminalScreen screen(Scene("Failures"), wish);
        EXPECT_THAT(screen.WaitFor("Yes, No"), EndsWith("no error\nQuestion\nSure?\nYes, No:"));
        const std::string recorded = screen.Recorded();
        const std::regex redText("\x1b\\[31m([^\x1b]*)\x1b\\[0m");
        const std::vector<std::string> red(
            std::sregex_token_iterator(recorded.begin(), recorded.end(), redText, 1), {});
        EXPECT_EQ(red, wish.ends_with("xterm") ? failures : std::vector<std::string>{}) << wish;
        EXPECT_EQ(screen.SeenInColour().find("\x1b[31m") == std::string::npos, red.empty());
    }
}

TEST(PersonAtATerminal, SeesHowFarAnUploadIsInOneLine)
{
    const TerminalScreen screen(Scene("Upload"));
    EXPECT_THAT(screen.WaitFor(" left"),
                ContainsRegex("FTP_LOG: [0-9]+% done, [0-9]+00000 sent, [0-9.]+ MB/s, 0:0[0-9] left"));
    const std::string begin =
        "Controls\nhelp lists what can be pressed.\n\\[5ms\\] FTP_LOG: 100% done, 10000000 sent";
    const std::string end = "\n\\[6ms\\] FTP_LOG: Successfully[^%]*";
    EXPECT_THAT(screen.WaitFor("Successfully", "Controls\n"), MatchesRegex(begin + ", [0-9.]+ MB/s" + end));
    const TerminalScreen narrow(Scene("Upload"), "", 40);
    EXPECT_THAT(narrow.WaitFor("Successfully", "Controls\n"), MatchesRegex(begin + end));
    // A terminal whose cursor cannot be moved has the lines as they are.
    const TerminalScreen plain(Scene("Upload"), "TERM=dumb");
    EXPECT_THAT(plain.WaitFor("Successfully"),
                HasSubstr("98% done, 9800000 sent\n[5ms] FTP_LOG: 99% done, 9900000 sent\n"));
}

TEST(PersonAtATerminal, HasTheTerminalBackHoweverTheProgramEndsOrStops)
{
    const ProgramFolder folder;
    // The signal, whether the terminal's output stands still, and how the program is started: also in a
    // terminal that does not control it.
    const std::tuple<std::string, bool, std::string> rows[] = {
        {"INT", false, ""},  {"TERM", true, ""},  {"HUP", false, "setsid -w "},
        {"QUIT", false, ""}, {"SEGV", false, ""}, {"ABRT", false, ""}};
    for (const auto& [signal, isStopped, prefix] : rows)
    {
        // A sanitizer keeps SIGSEGV to itself unless it is told.
        const TerminalScreen screen(ThenItsEcho("trap : INT QUIT; " + prefix + folder.Program().string()),
                                    "ASAN_OPTIONS=handle_segv=0 TSAN_OPTIONS=handle_segv=0");
        screen.WaitFor("\n>");
        screen.Type("half a line");
        screen.WaitFor("half a line");
        const std::string kill = "pkill -f '^" + folder.Program().string() + "' -";
        if (isStopped)
            screen.Press("C-s");
        EXPECT_EQ(Said(kill + signal + "; timeout 5 sh -c \"while " + kill + "0; do sleep 0.1; done\""), "");
        if (isStopped)
            screen.Press("C-q");
        EXPECT_THAT(screen.WaitFor("icanon\necho", "half"),
                    AllOf(StartsWith(isStopped ? "half a line" : "half a line\n"), EndsWith("icanon\necho")))
            << signal;
    }
    const TerminalScreen screen("bash --norc");
    screen.Enter({folder.Program().string() + " &"});
    screen.WaitFor("help lists");
    screen.Enter({"fg"});
    screen.WaitFor("\n>", "fg");
    std::string typed = "> ";
    for (const char* part : {"he", "l"}) // it stops a second time
    {
        screen.Type(part);
        screen.WaitFor(typed += part, "fg"); // what is not read yet goes with the signal
        screen.Press("C-z");
        screen.WaitFor("Stopped", typed);
        screen.Enter({"stty -a | grep -ow -e '-*echo'"});
        screen.WaitFor("\necho\n", "Stopped");
        screen.Enter({"fg"});
        screen.WaitFor(typed, "\necho\n");
    }
    screen.Enter({"p"});
    screen.WaitFor("> help\nPress:", "fg");
    screen.Enter({"quit"});
    screen.WaitFor("is closed", "fg");

    // Where its text goes into a file it is asked for nothing.
    const std::string text = (folder.Path() / "text").string();
    const TerminalScreen unseen(folder.Program().string() + " >" + text + "; cat " + text + "; echo End");
    unseen.Press("C-d");
    unseen.WaitFor("\nPress: Close, LDAP ..., FTP Logs to Support, CRC64\nEnd");
    // Nobody tells it that the terminal has gone.
    const std::string code = (folder.Path() / "code").string();
    const TerminalScreen lost("trap '' HUP; " + folder.Program().string() + "; echo $? >" + code,
                              "ASAN_OPTIONS=detect_leaks=0");
    lost.WaitFor("\n>");
    lost.HangUp();
    EXPECT_EQ(Said("timeout 20 sh -c 'until test -s " + code + "; do sleep 0.1; done'; cat " + code), "0\n");
}

TEST(UploadProgress, ReckonsRateAndTimeFromTheLinesBefore)
{
    // A line, the milliseconds since the first, and what is shown.
    const std::tuple<const wchar_t*, int, const wchar_t*> cases[] = {
        {L"1% done, 1000 sent\r\n", 0, L"1% done, 1000 sent"},
        {L"[1ms] FTP_LOG: 10% done, 10000 sent\r\n", 1000,
         L"[1ms] FTP_LOG: 10% done, 10000 sent, 9 KB/s, 0:10 left"},
        {L"10% done, 10000000 sent\r\n", 6667, L"10% done, 10000000 sent, 1.5 MB/s, 1:00 left"},
        {L"50% done, 2000 sent\r\n", 1800000, L"50% done, 2000 sent, 0 KB/s, 1:00:00 left"},
        {L"1% done, 2000 sent\r\n", 1000, L"1% done, 2000 sent, 1 KB/s, 3:18 left"},
        {L"0% done, 2000 sent\r\n", 1000, L"0% done, 2000 sent"}, // no share of the whole to reckon from
        {L"1% done, 2000 sent\r\n", 0, L"1% done, 2000 sent"},    // nor any time
        {L"100% done, 101000 sent\r\n", 1000, L"100% done, 101000 sent, 100 KB/s"},
        {L"2% done, 900 sent\r\n", 2000, L"2% done, 900 sent"}, // a new attempt
    };
    const Clock::time_point start{std::chrono::seconds(1)};
    for (const auto& [line, milliseconds, shown] : cases)
    {
        platform::UploadProgress progress;
        for (const int early : {0, 100})
            progress.Describe(std::get<0>(cases[0]), start + std::chrono::milliseconds(early));
        EXPECT_EQ(progress.Describe(line, start + std::chrono::milliseconds(milliseconds)), shown);
    }
    EXPECT_EQ(platform::UploadProgress().Describe(L"50% of it", start), std::nullopt);
}
