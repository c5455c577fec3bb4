// SPDX-License-Identifier: MIT
// Address families. On Windows this header comes before <iphlpapi.h>, which declares its calls only then.
#pragma once

#include "windef.h"

#ifndef AF_UNSPEC
#define AF_UNSPEC 0
#endif
