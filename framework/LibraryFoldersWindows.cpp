// SPDX-License-Identifier: MIT
// Before anything of the program runs: libraries that it or the system asks for by name come from the
// program's folder and the system's, never from the current directory or the PATH.
#include <windows.h>

namespace
{
[[gnu::constructor(101)]] void SearchOwnAndSystemFoldersAlone()
{
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
}
} // namespace
