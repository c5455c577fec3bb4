// SPDX-License-Identifier: MIT
// The Windows names that the tree uses, for Linux: the same spelling, the same meaning, no others.
// Each header below bears the name of the real one that declares its calls. A call is documented only
// where it differs from Windows; a name that is missing here is one that nothing in the tree calls.
#pragma once

#include "windef.h"
#include "winerror.h"
#include "winnt.h"
#include "winbase.h"
#include "winnls.h"
#include "winreg.h"
#include "libloaderapi.h"
#include "winuser.h"
