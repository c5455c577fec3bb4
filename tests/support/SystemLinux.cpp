// SPDX-License-Identifier: MIT
#include "tests/support/System.h"

#include "tests/support/OwnNetwork.h"

#include <csignal>
#include <cstdlib>

void KillProcess(const PROCESS_INFORMATION& process)
{
    kill(static_cast<pid_t>(process.dwProcessId), SIGKILL);
}

bool LeaveNamedEventsOfOthers()
{
    return EnterOwnNetwork();
}

void SetVariable(const char* name, const char* value)
{
    value ? setenv(name, value, 1) : unsetenv(name);
}
