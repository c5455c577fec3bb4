// SPDX-License-Identifier: MIT
#include "tests/kernel/PeerProcess.h"

#include <csignal>

void PeerProcess::Kill() const
{
    kill(static_cast<pid_t>(Id()), SIGKILL);
    WaitForSingleObject(Handle(), INFINITE);
}
