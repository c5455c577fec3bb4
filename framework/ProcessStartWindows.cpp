// SPDX-License-Identifier: MIT
// Before anything of the program runs: libraries that it or the system asks for by name come from the
// program's folder and the system's, never from the current directory or the PATH; no box of the system or
// of the C library waits for somebody where nobody sits; and no key of TLS goes to a file that the caller's
// environment names.
#include <windows.h>

#include <cstdlib>

namespace
{
[[gnu::constructor(101)]] void PrepareProcess()
{
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS);
    _set_error_mode(_OUT_TO_STDERR);
    SetEnvironmentVariableW(L"SSLKEYLOGFILE", nullptr);
}
} // namespace
