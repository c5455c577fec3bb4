// SPDX-License-Identifier: MIT
// Events, processes, threads, critical sections, files, clocks and the small services around them. Handles
// are numbers of one table in the process: a handle that is closed, made up or of the wrong kind is found
// out by each call (ERROR_INVALID_HANDLE).
#pragma once

#include "winnt.h"
#include "securitybaseapi.h"
#include "timezoneapi.h"

#include "platformExport.h"

#include <pthread.h>
#include <sys/single_threaded.h>

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

#define INFINITE 0xFFFFFFFFU
#define WAIT_OBJECT_0 0
#define WAIT_TIMEOUT 258
#define WAIT_FAILED 0xFFFFFFFFU
#define STILL_ACTIVE 259

#define STARTF_USESHOWWINDOW 0x00000001

#define CTRL_C_EVENT 0
#define CTRL_BREAK_EVENT 1
#define CTRL_CLOSE_EVENT 2
#define CTRL_SHUTDOWN_EVENT 6
using PHANDLER_ROUTINE = BOOL(WINAPI*)(DWORD event);

#define LMEM_FIXED 0x0000
#define LMEM_ZEROINIT 0x0040
#define LPTR (LMEM_FIXED | LMEM_ZEROINIT)

#define FORMAT_MESSAGE_IGNORE_INSERTS 0x00000200
#define FORMAT_MESSAGE_FROM_SYSTEM 0x00001000

struct SECURITY_ATTRIBUTES
{
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

struct STARTUPINFOW
{
    DWORD cb;
    LPWSTR lpReserved;
    LPWSTR lpDesktop;
    LPWSTR lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    PBYTE lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
};
using LPSTARTUPINFOW = STARTUPINFOW*;

struct PROCESS_INFORMATION
{
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
};
using LPPROCESS_INFORMATION = PROCESS_INFORMATION*;

struct WIN32_FIND_DATAW
{
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    WCHAR cFileName[MAX_PATH];
    WCHAR cAlternateFileName[14];
};
using LPWIN32_FIND_DATAW = WIN32_FIND_DATAW*;

// Re-entrant. Spins before it sleeps where another processor could release it meanwhile.
struct CRITICAL_SECTION
{
    pthread_mutex_t Mutex;
    DWORD SpinCount;
};
using LPCRITICAL_SECTION = CRITICAL_SECTION*;

extern "C"
{
    PLATFORM_EXPORT DWORD GetLastError();
    PLATFORM_EXPORT BOOL CloseHandle(HANDLE handle);

    // --- Events ---

    // Each event has a name, is reset by ResetEvent alone and begins unset. The name holds for the whole
    // machine, with "Global\" in front or without, and is gone when the last holder has closed it or ended,
    // killed or not. Other users may open it when the descriptor has a null access list; without one only the
    // same user and root. No other backslash in a name (ERROR_PATH_NOT_FOUND).
    PLATFORM_EXPORT HANDLE CreateEventW(LPSECURITY_ATTRIBUTES attributes, BOOL manualReset, BOOL initialState,
                                        LPCWSTR name);
    PLATFORM_EXPORT BOOL SetEvent(HANDLE event);
    PLATFORM_EXPORT BOOL ResetEvent(HANDLE event);

    // Waits for an event or for a process's end.
    PLATFORM_EXPORT DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);

    // --- Processes and threads ---

    // `application` is null: the whole path of the program is the first word of the command line, and nothing
    // is added to it. The rest is split by the rules of the C runtime. The child gets standard input, output
    // and error (null devices with SW_HIDE) and no other open file, and the current environment; the flags
    // are 0. A path that is not a program gives ERROR_ACCESS_DENIED or ERROR_BAD_EXE_FORMAT.
    PLATFORM_EXPORT BOOL CreateProcessW(LPCWSTR application, LPWSTR commandLine,
                                        LPSECURITY_ATTRIBUTES processAttributes,
                                        LPSECURITY_ATTRIBUTES threadAttributes, BOOL inheritHandles,
                                        DWORD flags, LPVOID environment, LPCWSTR currentDirectory,
                                        LPSTARTUPINFOW startup, LPPROCESS_INFORMATION information);

    // The process is killed, whatever the code.
    PLATFORM_EXPORT BOOL TerminateProcess(HANDLE process, UINT exitCode);

    // 128 + the signal's number for a process that a signal ended.
    PLATFORM_EXPORT BOOL GetExitCodeProcess(HANDLE process, LPDWORD exitCode);
    PLATFORM_EXPORT HANDLE GetCurrentProcess();

    // For one handler, added once, before other threads begin. SIGINT is CTRL_C_EVENT, SIGQUIT
    // CTRL_BREAK_EVENT, SIGHUP CTRL_CLOSE_EVENT and SIGTERM CTRL_SHUTDOWN_EVENT; one that the process was
    // started to ignore stays ignored. The handler runs on a thread of its own, for at most 1.5 s; then the
    // process ends by that very signal. Others of them meanwhile change nothing.
    PLATFORM_EXPORT BOOL SetConsoleCtrlHandler(PHANDLER_ROUTINE handler, BOOL add);
    PLATFORM_EXPORT HANDLE GetCurrentThread();
    PLATFORM_EXPORT DWORD GetCurrentThreadId();
    PLATFORM_EXPORT void Sleep(DWORD milliseconds);
    PLATFORM_EXPORT BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token);
    PLATFORM_EXPORT BOOL OpenThreadToken(HANDLE thread, DWORD access, BOOL openAsSelf, HANDLE* token);

    // The program's arguments, quoted as a Windows user would have typed them; works from the first static
    // constructor on. Bytes that are not UTF-8 read as U+DC80 to U+DCFF, here and in every path.
    PLATFORM_EXPORT LPWSTR GetCommandLineW();

    PLATFORM_EXPORT BOOL InitializeCriticalSectionAndSpinCount(LPCRITICAL_SECTION section, DWORD spinCount);
    PLATFORM_EXPORT void DeleteCriticalSection(LPCRITICAL_SECTION section);

    // These two are inline: a free lock costs what the C library's costs, with no call in between.
    inline void EnterCriticalSection(LPCRITICAL_SECTION section)
    {
        const DWORD spins = __libc_single_threaded ? 0 : section->SpinCount; // alone, it cannot wait
        for (DWORD spin = 0; spin < spins; ++spin)
        {
            // Ever more seldom: each try takes the lock's memory away from its holder.
            if ((spin & (spin - 1)) == 0 && pthread_mutex_trylock(&section->Mutex) == 0)
                return;
#if defined(__x86_64__)
            __builtin_ia32_pause();
#elif defined(__aarch64__)
            asm volatile("yield");
#endif
        }
        pthread_mutex_lock(&section->Mutex);
    }

    inline void LeaveCriticalSection(LPCRITICAL_SECTION section)
    {
        pthread_mutex_unlock(&section->Mutex);
    }

    // --- Files ---

    // The pattern's last part is "*". A symbolic link carries its own times, the reparse attribute and
    // IO_REPARSE_TAG_SYMLINK, and the directory attribute when it leads to one. Sizes and other times than
    // that of the last write are not told.
    PLATFORM_EXPORT HANDLE FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW data);
    PLATFORM_EXPORT BOOL FindNextFileW(HANDLE find, LPWIN32_FIND_DATAW data);
    PLATFORM_EXPORT BOOL FindClose(HANDLE find);
    PLATFORM_EXPORT BOOL DeleteFileW(LPCWSTR path);

    // --- Clocks, memory, texts, names ---

    PLATFORM_EXPORT DWORD GetTickCount();
    PLATFORM_EXPORT HLOCAL LocalAlloc(UINT flags, SIZE_T bytes);
    PLATFORM_EXPORT HLOCAL LocalFree(HLOCAL memory);

    // Only the system's own texts (FORMAT_MESSAGE_FROM_SYSTEM), in English; `source`, `language` and
    // `arguments` are not read.
    PLATFORM_EXPORT DWORD FormatMessageW(DWORD flags, LPCVOID source, DWORD code, DWORD language,
                                         LPWSTR buffer, DWORD size, void* arguments);

    PLATFORM_EXPORT BOOL GetComputerNameW(LPWSTR buffer, LPDWORD size);
    PLATFORM_EXPORT BOOL GetUserNameW(LPWSTR buffer, LPDWORD size);
}
