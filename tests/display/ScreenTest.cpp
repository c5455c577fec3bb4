// SPDX-License-Identifier: MIT
// The program on an X server of its own, used with real key presses and clicks.
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

std::string ReadAll(FILE* file)
{
    std::string text;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        text += static_cast<char>(c);
    return text;
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
        FILE* const number = fdopen(ends[0], "r");
        char name[16] = ":";
        if (std::fscanf(number, "%14s", name + 1) == 1)
            setenv("DISPLAY", name, 1);
        std::fclose(number);
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
    FILE* const output = popen(("timeout 20 xdotool " + actions).c_str(), "r");
    std::string text = ReadAll(output);
    pclose(output);
    return text;
}

// Waits for a window and gives it the keyboard.
std::string Find(const std::string& title)
{
    const std::string window = Do("search --sync --onlyvisible --name '^" + title + "$'");
    Do("windowfocus --sync " + window);
    return window.substr(0, window.find('\n'));
}

// What another program gets when a person pastes into it: this one.
std::string Pasted()
{
    int count = 1;
    char name[] = "screen_tests";
    char* arguments[] = {name, nullptr};
    const QGuiApplication application(count, arguments);
    return QGuiApplication::clipboard()->text().toStdString();
}

} // namespace

// The sums are the checks that xz files carry over the text's bytes.
TEST(Screen, PersonGetsAChecksumAndCopiesIt)
{
    if (std::system("command -v Xvfb xdotool >/dev/null") != 0)
        GTEST_SKIP() << "Xvfb and xdotool are needed";
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    const ProgramFolder folder;
    for (const char* scale : {"1", "2"})
    {
        SCOPED_TRACE(std::string("at scale ") + scale);
        setenv("QT_SCALE_FACTOR", scale, 1);
        const Screen screen;
        FILE* const program =
            popen(("exec timeout 60 " + folder.Program().string() + " </dev/null").c_str(), "r");
        Find("ZT Diagnostics");
        Do("key Tab Tab Tab Tab space"); // the button CRC64
        Find("Dialog");
        Do("key Tab Tab type 123456789");
        Do("key Tab Tab space");         // computes
        Do("key Tab Tab ctrl+a ctrl+c"); // the hexadecimal sum, wide
        EXPECT_EQ(Pasted(), "CC1CBC7DE1A8AA8D");

        Find("Dialog");
        Do("key Escape");
        Find("ZT Diagnostics");
        Do("key Escape");
        ReadAll(program);
        EXPECT_EQ(pclose(program), 0);
    }
}
