// SPDX-License-Identifier: MIT
// What each system does in its own way.
#pragma once

#include <windows.h>

// Ends a process without a chance to clean up.
void KillProcess(const PROCESS_INFORMATION& process);

// From now on the process and what it starts share named events with nobody. False where that is not allowed.
bool LeaveNamedEventsOfOthers();

// Takes the variable out of the environment where `value` is null.
void SetVariable(const char* name, const char* value);
