// SPDX-License-Identifier: MIT
#include "platform/display/terminal/TerminalModes.h"

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>

namespace platform
{

namespace
{

termios gFound;
int gWakeUp = -1;
bool gbIsTakenOver = false;
std::atomic<bool> gbIsChanged = false;
std::atomic<bool> gbIsEnding = false;
std::atomic<bool> gbWasLeft = false;

constexpr std::array kEndings = {SIGHUP, SIGINT, SIGQUIT, SIGILL, SIGABRT, SIGBUS, SIGFPE, SIGSEGV, SIGTERM};

// Safe in a signal's handler, and in the background, where it leaves the terminal to whoever has it.
void GiveBack()
{
    if (gbIsChanged.exchange(false) && IsInForeground())
        tcsetattr(STDIN_FILENO, TCSANOW, &gFound);
}

void Handle(int number, void (*handler)(int), unsigned flags)
{
    struct sigaction former = {};
    // What the program or a sanitizer handles is theirs.
    if (sigaction(number, nullptr, &former) != 0 || former.sa_handler != SIG_DFL)
        return;
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(flags); // SA_RESETHAND is unsigned
    sigaction(number, &action, nullptr);
}

void End(int number)
{
    gbIsEnding = true;
    const bool wasChanged = gbIsChanged;
    GiveBack();
    // The shell's prompt begins a line of its own, where the terminal takes output: Ctrl-S stops it.
    pollfd output = {STDOUT_FILENO, POLLOUT, 0};
    if (wasChanged && poll(&output, 1, 0) == 1 && (output.revents & POLLOUT) != 0) [[maybe_unused]]
        const ssize_t written = write(STDOUT_FILENO, "\n", 1);
    raise(number); // the default again, see SA_RESETHAND
}

void Stop(int number)
{
    const int error = errno;
    GiveBack();
    signal(number, SIG_DFL);
    raise(number); // and stands here until it goes on
    Handle(number, Stop, SA_NODEFER | SA_RESTART);
    gbWasLeft = true;
    eventfd_write(gWakeUp, 1);
    errno = error;
}

void TakeOver(int wakeUp)
{
    tcgetattr(STDIN_FILENO, &gFound);
    gWakeUp = wakeUp;
    gbIsTakenOver = true;
    std::atexit(GiveBack);
    for (const int number : kEndings)
        Handle(number, End, SA_RESETHAND | SA_NODEFER);
    Handle(SIGTSTP, Stop, SA_NODEFER | SA_RESTART);
}

} // namespace

void SetTerminalMode(TerminalMode mode, int wakeUp)
{
    if (gbIsEnding)
        return;
    if (!gbIsTakenOver)
        TakeOver(wakeUp);
    if (mode == TerminalMode::AsFound)
        return GiveBack();
    termios changed = gFound;
    changed.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    if (mode == TerminalMode::Keys)
    {
        changed.c_lflag &= ~static_cast<tcflag_t>(ICANON | IEXTEN);
        changed.c_cc[VMIN] = 1;
        changed.c_cc[VTIME] = 0;
    }
    gbIsChanged = true;
    tcsetattr(STDIN_FILENO, TCSADRAIN, &changed);
}

bool IsInForeground()
{
    const pid_t group = tcgetpgrp(STDIN_FILENO);
    return group == getpgrp() || (group == -1 && errno == ENOTTY);
}

bool TerminalWasLeft()
{
    return gbWasLeft.exchange(false);
}

} // namespace platform
