// SPDX-License-Identifier: MIT
#include "tests/support/System.h"

#include <cstdlib>
#include <string>

void KillProcess(const PROCESS_INFORMATION& process)
{
    TerminateProcess(process.hProcess, 1);
}

bool LeaveNamedEventsOfOthers()
{
    return true; // ctest runs one program that ships at a time
}

void SetVariable(const char* name, const char* value)
{
    _putenv((name + std::string("=") + (value ? value : "")).c_str());
}
