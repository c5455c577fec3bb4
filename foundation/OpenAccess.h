// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

// Security attributes with a null access list, so that every user may open what is made with them. Built on
// the first call and kept until the process ends. Main thread only.
SECURITY_ATTRIBUTES* OpenAccessAttributes();
