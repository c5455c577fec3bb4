// SPDX-License-Identifier: MIT
// What the program uses of Kelvane, the product's library for logging, configuration, start and end, and
// small services around the machine. Everything lives in Kelvane.dll (libKelvane.so). Unless said
// otherwise any thread may call it, and a failure gives an empty text, 0 or false.
#pragma once

#include "foundation/Oriska.h"
#include "kelvaneExport.h"

#include <windows.h>
// Windows declares the user name's formats only for those who name a side.
#ifndef SECURITY_WIN32
#define SECURITY_WIN32
#endif
#include <security.h>

#include <cstdint>
#include <ctime>
#include <set>
#include <string>

class Cleanable;
class CLockCS;
class RequestTarget; // never made by this program: every pointer passed is null

// --- Configuration ---

// A setting's number. Named ones are those that the libraries themselves obey.
enum eConfigID : int
{
    eConfigNone = 0,
};

enum eParamType : int
{
    eParamUnknown = 0,
    eParamString = 2,
    eParamDWord = 13,
};

// The setting of a name, in any case, or eConfigNone. `logUnknown` is kept for the product's other programs.
KELVANE_EXPORT eConfigID GetConfigID(const wchar_t* name, bool byName);
KELVANE_EXPORT eParamType GetConfigType(eConfigID id);

// Store a value durably; false when the store refuses it. Another process that writes another setting at
// the same moment loses nothing, nor does a crash.
KELVANE_EXPORT bool SetConfigStr(eConfigID id, const wchar_t* text, bool save, RequestTarget* target);
KELVANE_EXPORT bool SetConfigDWord(eConfigID id, DWORD number, bool save, RequestTarget* target);

// Forgets what is remembered of a setting: the next read gives what the store holds.
KELVANE_EXPORT void ResetConfigVal(eConfigID id);
KELVANE_EXPORT ZTString GetConfigStr(eConfigID id, RequestTarget* target);
KELVANE_EXPORT DWORD GetConfigDWord(eConfigID id, RequestTarget* target);

// --- Logging ---

// Severity of a log line.
constexpr unsigned char kLogFailure = 1;
constexpr unsigned char kLogProgress = 2;

KELVANE_EXPORT void _Log(unsigned char severity, const wchar_t* format, const PlaceholderValues& values);
KELVANE_EXPORT void LogNF(unsigned char severity, const wchar_t* text, bool flush);
KELVANE_EXPORT void LogModuleLoaded(HINSTANCE instance, bool loaded);

// --- Start and end ---

// Comes before all logging and configuration. `instance` may be null.
KELVANE_EXPORT void CriticalStartupInit(unsigned long kind, eConfigID logSetting, HINSTANCE instance);

// Which program of the product runs; 4 is a one-shot change of a setting.
extern KELVANE_EXPORT unsigned long gRunningApp;

// Thread procedure for _beginthread: waits for SignalShutdown. Nobody waits for the thread.
KELVANE_EXPORT void __cdecl GUIListenForShutdown(void* unused);

// Logs the reason and releases the listener.
KELVANE_EXPORT void SignalShutdown(const wchar_t* reason);

// First call on a new thread; the name stands in the thread's log lines and in a debugger.
KELVANE_EXPORT void ThreadInit(const wchar_t* name);

// Dispatches the messages that wait for the calling thread and returns without waiting for more.
KELVANE_EXPORT void PumpMessages(HWND window, DWORD reserved);

// A message box that closes by itself after `seconds`. `type` as for MessageBoxW; the result is the button's
// id, or `timeoutResult` when time ran out.
KELVANE_EXPORT int TimedMessageBox(const wchar_t* title, const wchar_t* text, UINT type, DWORD seconds,
                                   int timeoutResult);

// While it lives, a hardware fault on this thread (access violation, division by zero) is thrown as a
// SEHException, so that a catch block around the guard receives it.
class KELVANE_EXPORT CatchSEH
{
public:
    CatchSEH();
    ~CatchSEH();
    CatchSEH(const CatchSEH&) = delete;
    CatchSEH& operator=(const CatchSEH&) = delete;

private:
    void* mPrevious;
};

// --- User and report ---

KELVANE_EXPORT ZTString GetLocalComputerName();
KELVANE_EXPORT ZTString GetUserNameW(EXTENDED_NAME_FORMAT format);
KELVANE_EXPORT ZTString GetCustServiceInfo();

// Month and day of the first and the second change between standard and daylight time in `year`, in local
// time before the change; four zeros where there is none.
KELVANE_EXPORT void GetTimeZoneTransitionDates(int year, int& month1, int& day1, int& month2, int& day2);

// The number by the user's regional number format. `digits` -1 keeps the digits that the format has.
KELVANE_EXPORT ZTString FormatFloatingPointNum(double value, bool grouping, int digits);

enum eSysErrMsg : int
{
    eSysErrMsgPlain = 1,
};
enum eMonitorType : int
{
    eMonitorNone = 0,
};

// The system's text of an error code, without a line end; the code itself stands in it.
KELVANE_EXPORT ZTString GetSystemErrorMessage(DWORD code, eSysErrMsg kind, eMonitorType monitor, bool log);

// --- Files and text ---

// The log directory, ending in a separator.
KELVANE_EXPORT ZTString GetLogDirectory();
// Size in bytes, 0 for a file that is not there.
KELVANE_EXPORT std::uint64_t ZTGetFileSize(const wchar_t* path);
// Writes the text as UTF-8 without a byte order mark, in place of what the file held.
KELVANE_EXPORT bool WriteTextFileAsUTF8(const wchar_t* path, const ZTString& text, bool overwrite, bool share,
                                        bool append, bool mark);
KELVANE_EXPORT bool IsFileOrDirLink(const WIN32_FIND_DATAW& findData);
// Replaces what a file name cannot hold on either system; never leaves a reserved name, an empty one, "."
// or "..".
KELVANE_EXPORT void RemoveIllegalFileSystemCharacters(ZTString& name, const wchar_t* replacement);
// The set's texts in order, the separator between them.
KELVANE_EXPORT ZTString GetStringFromSet(const std::set<ZTString>& texts, const wchar_t* separator);
// Seconds since 1970, rounded down.
KELVANE_EXPORT std::int64_t FILETIMEToTimeT(FILETIME time);

// The UTF-8 form of a text, alive as long as the object.
class KELVANE_EXPORT StrConverter
{
public:
    explicit StrConverter(const wchar_t* text);
    operator const char*() const;

private:
    std::string mNarrow;
};

// Reads decimal digits, or hexadecimal ones after 0x; see the definition for anything else.
KELVANE_EXPORT unsigned long wtodw(const wchar_t* text);

// --- The registry of cleanable objects ---

KELVANE_EXPORT std::set<Cleanable*>& GetgCleanables();
KELVANE_EXPORT CLockCS& GetgCleanablesCS();
KELVANE_EXPORT CLockCS& GetgCleanablesDeleteCS();
