// SPDX-License-Identifier: MIT
// The exception is thrown by the signal handler itself: the unwinder steps over the signal's frame and finds
// the faulting instruction's caller by the tables that this ABI demands of every function.
#include "foundation/Kelvane.h"

#include <signal.h>

#include <array>
#include <mutex>

namespace
{

constexpr std::array<int, 4> kFaults{SIGSEGV, SIGBUS, SIGFPE, SIGILL};

// A handler may use only what needs no allocation.
[[gnu::tls_model("initial-exec")]] thread_local int tGuards = 0;

// While any thread holds a guard the handler is in place; the last guard puts back what was there.
struct Handlers
{
    std::mutex guard;
    int guards = 0;
    std::array<struct sigaction, kFaults.size()> previous{};
};
Handlers& TheHandlers()
{
    static auto& handlers = *new Handlers;
    return handlers;
}

unsigned long CodeOf(int signal, int reason)
{
    switch (signal)
    {
    case SIGFPE:
        return reason == FPE_INTDIV ? kFaultIntegerDivision : kFaultFloatingPoint;
    case SIGILL:
        return kFaultIllegalInstruction;
    default:
        return kFaultAccessViolation;
    }
}

void OnFault(int signal, siginfo_t* information, void*)
{
    if (tGuards > 0 && information->si_code > 0)
        throw SEHException(CodeOf(signal, information->si_code));
    // Not for us. With the previous action in place the instruction faults again, or the sender's signal
    // comes again.
    const Handlers& handlers = TheHandlers();
    for (std::size_t index = 0; index < kFaults.size(); ++index)
        if (kFaults[index] == signal)
            sigaction(signal, &handlers.previous[index], nullptr);
    if (information->si_code <= 0)
        raise(signal);
}

} // namespace

CatchSEH::CatchSEH()
{
    Handlers& handlers = TheHandlers();
    const std::lock_guard lock(handlers.guard);
    if (handlers.guards++ == 0)
    {
        struct sigaction action
        {
        };
        action.sa_sigaction = OnFault;
        // The handler is left by an exception, so nothing would unblock the signal again.
        action.sa_flags = SA_SIGINFO | SA_NODEFER;
        sigemptyset(&action.sa_mask);
        for (std::size_t index = 0; index < kFaults.size(); ++index)
            sigaction(kFaults[index], &action, &handlers.previous[index]);
    }
    ++tGuards;
}

CatchSEH::~CatchSEH()
{
    --tGuards;
    Handlers& handlers = TheHandlers();
    const std::lock_guard lock(handlers.guard);
    if (--handlers.guards == 0)
        for (std::size_t index = 0; index < kFaults.size(); ++index)
            sigaction(kFaults[index], &handlers.previous[index], nullptr);
}

SEHException::SEHException(unsigned long code) : mCode(code) {}

unsigned long SEHException::Code() const noexcept
{
    return mCode;
}

const char* SEHException::what() const noexcept
{
    return "hardware fault";
}
