// SPDX-License-Identifier: MIT
#pragma once

#include "windef.h"

namespace platform
{

// The Windows code of an errno value; one that has no counterpart becomes ERROR_GEN_FAILURE.
DWORD ErrorFromErrno(int code);

// The thread's last error, which GetLastError gives.
void SetLastError(DWORD code);

// Sets the last error and gives FALSE, for a call's failing return.
BOOL FailWith(DWORD code);
BOOL FailWithErrno(int code);

} // namespace platform
