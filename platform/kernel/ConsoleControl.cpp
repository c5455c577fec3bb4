// SPDX-License-Identifier: MIT
// The signals that end a run: INT, TERM, HUP and QUIT are waited for on a thread of its own, so that what is
// to be done first may block, allocate and lock, whatever the other threads do.
#include "base/RunWithin.h"
#include "platform/kernel/Handle.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <system_error>
#include <thread>

using namespace platform;

namespace
{

constexpr std::chrono::milliseconds kPatience{1500}; // with a handler

struct Ending
{
    int mSignal;
    DWORD mEvent;
};
constexpr std::array<Ending, 4> kEndings = {{{SIGINT, CTRL_C_EVENT},
                                             {SIGTERM, CTRL_SHUTDOWN_EVENT},
                                             {SIGHUP, CTRL_CLOSE_EVENT},
                                             {SIGQUIT, CTRL_BREAK_EVENT}}};

// Inherited from whoever started the program: without its children's ends and with an end by a full pipe or
// disk there would be no exit codes and no lines that say so.
[[gnu::constructor]] void SetSignals()
{
    signal(SIGCHLD, SIG_DFL);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
}

// Those that the program was not started to ignore, as nohup(1) does.
sigset_t EndingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const Ending& ending : kEndings)
    {
        struct sigaction action = {};
        if (sigaction(ending.mSignal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
            sigaddset(&signals, ending.mSignal);
    }
    return signals;
}

void Watch(sigset_t signals, PHANDLER_ROUTINE handler)
{
    int number = 0;
    sigwait(&signals, &number);
    const DWORD event = std::ranges::find(kEndings, number, &Ending::mSignal)->mEvent;
    // More of them wait: a shell that is closed sends HUP, and then its terminal does.
    try
    {
        RunWithin(
            Clock::now() + kPatience, [handler, event] { return handler(event); });
    }
    catch (const std::system_error&) // no thread is left
    {
        handler(event);
    }
    CloseAllHandles();
    for (const Ending& other : kEndings) // which of them came is forgotten
        if (other.mSignal != number)
            signal(other.mSignal, SIG_IGN);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    raise(number);
    _exit(128 + number); // the first process of a container survives its own signal
}

} // namespace

BOOL SetConsoleCtrlHandler(PHANDLER_ROUTINE handler, BOOL add)
{
    static std::atomic<bool> isWatching = false;
    if (handler == nullptr || !add || isWatching.exchange(true))
        return FailWith(ERROR_INVALID_PARAMETER);
    const sigset_t signals = EndingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    try
    {
        std::thread(Watch, signals, handler).detach();
        return TRUE;
    }
    catch (const std::system_error&) // no thread is left: they end the run as they always do
    {
        pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
        isWatching = false;
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    }
}
