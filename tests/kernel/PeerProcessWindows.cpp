// SPDX-License-Identifier: MIT
#include "tests/kernel/PeerProcess.h"

void PeerProcess::Kill() const
{
    TerminateProcess(Handle(), 1);
    WaitForSingleObject(Handle(), INFINITE);
}
