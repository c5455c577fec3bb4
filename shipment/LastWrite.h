// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/Oriska.h"

#include <windows.h>

// When a file that FindFirstFileW has found was last written to. On Windows a folder's record tells of a file
// that is open for writing, such as a log, only as of its opening: there the file itself is asked, and one of
// another size than its record's is being written now. The record holds where the file cannot be asked.
FILETIME LastWrite(const ZTString& path, const WIN32_FIND_DATAW& record);
