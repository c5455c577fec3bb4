// SPDX-License-Identifier: MIT
// The Windows names that the tree uses, for Linux: the same spelling, the same meaning, no others.
// Each header below bears the name of the real one that declares its calls. A call is documented only
// where it differs from Windows; a name that is missing here is one that nothing in the tree calls.
// A resource compiler (RC_INVOKED) sees constants alone.
#pragma once

#include "windef.h"
#ifndef RC_INVOKED
#include "winerror.h"
#include "winnt.h"
#include "winbase.h"
#include "winnls.h"
#include "winreg.h"
#include "libloaderapi.h"
#endif
#include "winuser.h"
