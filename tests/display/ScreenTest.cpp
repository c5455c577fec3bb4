// SPDX-License-Identifier: MIT
// Programs on an X server of their own, used with real key presses and clicks.
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

struct ClosePipe
{
    void operator()(FILE* pipe) const { pclose(pipe); }
};
using Pipe = std::unique_ptr<FILE, ClosePipe>;

std::string ReadAll(FILE* file)
{
    std::string text;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        text += static_cast<char>(c);
    return text;
}

std::string Output(const std::string& command)
{
    const Pipe pipe(popen(command.c_str(), "r"));
    return ReadAll(pipe.get());
}

// The server chooses a free display number; DISPLAY names it while the object lives.
class Screen
{
public:
    Screen()
    {
        int ends[2];
        if (pipe(ends) != 0)
            return;
        const std::string numberTo = std::to_string(ends[1]);
        mServer = fork();
        if (mServer == 0)
        {
            close(ends[0]);
            freopen("/dev/null", "w", stderr);
            execlp("Xvfb", "Xvfb", "-displayfd", numberTo.c_str(), "-screen", "0", "1600x1000x24", nullptr);
            _exit(127);
        }
        close(ends[1]);
        std::string number;
        for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';)
            number += c;
        close(ends[0]);
        setenv("DISPLAY", (":" + number).c_str(), 1);
    }

    ~Screen()
    {
        unsetenv("DISPLAY");
        if (mServer <= 0)
            return;
        kill(mServer, SIGTERM);
        waitpid(mServer, nullptr, 0);
    }

    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

private:
    pid_t mServer = -1;
};

std::string Do(const std::string& actions)
{
    return Output("timeout 20 xdotool " + actions);
}

// Waits for a window and gives it the keyboard.
std::string Find(const std::string& title)
{
    const std::string search = "search --sync --onlyvisible --name '^" + title + "$'";
    const std::string window = Do(search);
    Do("windowfocus --sync " + window);
    return window.substr(0, window.find('\n'));
}

// Clicks at a place of a window, in thousandths of its size.
void Click(const std::string& window, int x, int y)
{
    std::istringstream geometry(Do("getwindowgeometry --shell " + window));
    int width = 0;
    int height = 0;
    for (std::string line; std::getline(geometry, line);)
    {
        std::sscanf(line.c_str(), "WIDTH=%d", &width);
        std::sscanf(line.c_str(), "HEIGHT=%d", &height);
    }
    Do("mousemove --window " + window + ' ' + std::to_string(width * x / 1000) + ' ' +
       std::to_string(height * y / 1000) + " click 1");
}

bool CanBeUsed()
{
    return std::system("command -v Xvfb xdotool >/dev/null") == 0;
}

constexpr const char* kWhyNot = "Xvfb and xdotool are needed";

// What another program gets when a person pastes into it.
std::string PasteElsewhere()
{
    const Pipe program(popen("timeout 60 " SMALL_PROGRAM, "r"));
    const std::string dialog = Find("DiagnosticsDlg");
    Do("key ctrl+v");
    Click(dialog, 549, 916); // OK
    Find("Small Program");
    Do("key alt+y");
    const std::string output = ReadAll(program.get());
    return output.substr(0, output.find(" port="));
}

} // namespace

TEST(Screen, PersonFillsInADialogWithKeysAndMouse)
{
    if (!CanBeUsed())
        GTEST_SKIP() << kWhyNot;
    setenv("LC_ALL", "C.UTF-8", 1); // which must not become the program's locale
    for (const char* scale : {"1", "2"})
    {
        const Screen screen;
        setenv("QT_SCALE_FACTOR", scale, 1);
        const Pipe program(popen("timeout 60 " SMALL_PROGRAM, "r"));
        const std::string dialog = Find("DiagnosticsDlg");
        Do("type ldap.example");
        Do("key Tab type 636");
        Do("key Tab Tab type administrator");
        Do("key Tab Tab Down");
        Click(dialog, 549, 916); // OK
        Find("Small Program");
        Do("key alt+y");
        EXPECT_EQ(ReadAll(program.get()), "server=ldap.example port=636 user=administrator method=Simple\n"
                                          "result=1 answer=6 locale=C\n")
            << "at scale " << scale;
    }
}

// The sums are the checks that xz files carry over the text's bytes.
TEST(Screen, PersonGetsAChecksumAndCopiesIt)
{
    if (!CanBeUsed())
        GTEST_SKIP() << kWhyNot;
    unsetenv("QT_SCALE_FACTOR");
    const ProgramFolder folder;
    const Screen screen;
    Pipe program(popen(("exec timeout 60 " + folder.Program().string() + " </dev/null").c_str(), "r"));
    Find("ZT Diagnostics");
    Do("key Tab Tab Tab Tab space"); // the button CRC64
    Find("Dialog");
    Do("key Tab Tab type 123456789");
    Do("key Tab Tab space");         // computes
    Do("key Tab Tab ctrl+a ctrl+c"); // the hexadecimal sum, wide
    EXPECT_EQ(PasteElsewhere(), "server=CC1CBC7DE1A8AA8D");

    Find("Dialog");
    Do("key shift+Tab shift+Tab shift+Tab space"); // not wide any more
    Do("key Tab space Tab ctrl+a ctrl+c");         // the decimal sum
    EXPECT_EQ(PasteElsewhere(), "server=11051210869376104954");

    Find("Dialog");
    Do("key Escape");
    Find("ZT Diagnostics");
    Do("key Escape");
    EXPECT_EQ(pclose(program.release()), 0);
}
