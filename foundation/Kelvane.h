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
#include <exception>
#include <set>
#include <string>

class Cleanable;
class CLockCS;
class RequestTarget; // never made by this program: every pointer passed is null

// --- Configuration ---

// A setting's number. The settings live in one file, Tavo.settings.json in the program folder, which a person
// may edit; what is not there, is not of its type or is out of its range has its default. All are read when
// the program starts.
enum eConfigID : int
{
    eConfigNone = 0,

    // LogDirectory: where the log lies, for the whole life of the process; "Logs", also where a link of
    // another account stands in the path. A relative path starts in the program folder.
    eConfigLogDirectory = 337,
    // CustomerServiceText: how to reach the people who help; what GetCustServiceInfo gives.
    eConfigCustomerServiceText = 338,
    // LogLevel: the highest severity that is logged, 0 to 2, 0 for no log at all; 2. At once. A change of a
    // setting is logged whatever it is.
    eConfigLogLevel = 339,
    // LogSizeLimitKB: the size beyond which a new log is begun, in units of 1024 bytes, 4194304 at most, 0
    // for no limit; 4096. At once.
    eConfigLogSizeLimitKB = 340,
    // LogFileCount: how many older logs are kept, Tavo.1.log being the latest, kMostOlderLogs at most; 5. At
    // once.
    eConfigLogFileCount = 341,
    // RecordLockWaits: 1 has every wait for a lock recorded; SignalShutdown logs them. 0.
    eConfigRecordLockWaits = 342,
};

constexpr DWORD kMostOlderLogs = 99;

enum eParamType : int
{
    eParamUnknown = 0,
    eParamString = 2,
    eParamDWord = 13,
};

// Parameters without a name below are there for the product's other programs; the comments give the one value
// that each has. Every RequestTarget is null.

// The setting of a name, in any case; eConfigNone when there is none. The flag is true.
KELVANE_EXPORT eConfigID GetConfigID(const wchar_t* name, bool);
KELVANE_EXPORT eParamType GetConfigType(eConfigID id);

// Change a value, for this process and in the store. The flag is true. False, nothing changed and the reason
// in the log, when the setting is of another type, the value is out of its range or the store cannot be
// written. A stored value has reached the disk; another process that writes another setting at the same
// moment loses nothing, nor does a crash.
KELVANE_EXPORT bool SetConfigStr(eConfigID id, const wchar_t* text, bool, RequestTarget*);
KELVANE_EXPORT bool SetConfigDWord(eConfigID id, DWORD number, bool, RequestTarget*);

// Values are remembered at the first read. This forgets one: the next read gives what the store holds.
KELVANE_EXPORT void ResetConfigVal(eConfigID id);
KELVANE_EXPORT ZTString GetConfigStr(eConfigID id, RequestTarget*);
KELVANE_EXPORT DWORD GetConfigDWord(eConfigID id, RequestTarget*);

// --- Logging ---

// The log is Tavo.log in the log directory: UTF-8, a line with local time, process and thread for each call,
// whatever control characters the text holds. Several processes may write it at once. It may be used before
// main and after it. When it cannot be written, the program goes on, and standard error says so once.

// Severity of a log line.
constexpr unsigned char kLogFailure = 1;
constexpr unsigned char kLogProgress = 2;

KELVANE_EXPORT void _Log(unsigned char severity, const wchar_t* format, const PlaceholderValues& values);
// A finished text. The flag is false.
KELVANE_EXPORT void LogNF(unsigned char severity, const wchar_t* text, bool);
// A null instance is the program itself. The flag is true.
KELVANE_EXPORT void LogModuleLoaded(HINSTANCE instance, bool);

// --- Start and end ---

// Comes before all logging and configuration. `kind` becomes gRunningApp, `logSetting` is the setting that
// names the log's directory. `instance` is not needed on these systems and may be null.
KELVANE_EXPORT void CriticalStartupInit(unsigned long kind, eConfigID logSetting, HINSTANCE instance);

// Which program of the product runs.
constexpr unsigned long kAppSetConfig = 4; // a one-shot change of a setting
extern KELVANE_EXPORT unsigned long gRunningApp;

// Thread procedure for _beginthread: waits for SignalShutdown. Nobody waits for the thread.
KELVANE_EXPORT void __cdecl GUIListenForShutdown(void* unused);

// Logs the reason, and before it the waits for locks where they were recorded; releases the listener.
KELVANE_EXPORT void SignalShutdown(const wchar_t* reason);

// First call on a new thread; the name stands in the thread's log lines and in a debugger.
KELVANE_EXPORT void ThreadInit(const wchar_t* name);

// Dispatches the messages that wait for the calling thread, in all its windows, and returns without waiting
// for more. A handler that is dispatched may pump in turn. At a depth of 16 the call leaves what a person
// does to the outer ones, and inside such a call it returns at once. `window` is
// null and `reserved` 0.
KELVANE_EXPORT void PumpMessages(HWND window, DWORD reserved);

// A message box that closes by itself after `seconds`. `type` as for MessageBoxW; the result is the button's
// id, or `timeoutResult` when time ran out.
KELVANE_EXPORT int TimedMessageBox(const wchar_t* title, const wchar_t* text, UINT type, DWORD seconds,
                                   int timeoutResult);

// What a hardware fault becomes under a CatchSEH. The code is one of Windows' exception codes, on both
// systems.
constexpr unsigned long kFaultAccessViolation = 0xC0000005;
constexpr unsigned long kFaultIllegalInstruction = 0xC000001D;
constexpr unsigned long kFaultFloatingPoint = 0xC0000090;
constexpr unsigned long kFaultIntegerDivision = 0xC0000094;
class KELVANE_EXPORT SEHException : public std::exception
{
public:
    explicit SEHException(unsigned long code);
    unsigned long Code() const noexcept;
    const char* what() const noexcept override;

private:
    unsigned long mCode;
};

// While it lives, a hardware fault on this thread (access violation, division by zero, illegal instruction,
// but no overflow of the stack) is thrown as a SEHException, so that a catch block around the guard receives
// it. The fault must lie in a function that is called inside that block, and the compiler must not take the
// call for one that throws nothing (noexcept, C library functions of Linux): go through a volatile function
// pointer.
class KELVANE_EXPORT CatchSEH
{
public:
    CatchSEH();
    ~CatchSEH();
    CatchSEH(const CatchSEH&) = delete;
    CatchSEH& operator=(const CatchSEH&) = delete;
};

// --- User and report ---

KELVANE_EXPORT ZTString GetLocalComputerName();
// The account's bare name; `format` is NameUnknown.
KELVANE_EXPORT ZTString GetUserNameW(EXTENDED_NAME_FORMAT format);
// The setting CustomerServiceText.
KELVANE_EXPORT ZTString GetCustServiceInfo();

// Month and day of the first and the second change between standard and daylight time in `year` (1 to 9999),
// by the machine's zone data and in local time before the change; zeros where there is none.
KELVANE_EXPORT void GetTimeZoneTransitionDates(int year, int& month1, int& day1, int& month2, int& day2);

// The number by the user's regional number format, without groups, with the digits after the point that it
// has, 9 at most. What is not a finite number has printf's form. The flag is false, the digits are -1.
KELVANE_EXPORT ZTString FormatFloatingPointNum(double value, bool, int);

enum eSysErrMsg : int
{
    eSysErrMsgPlain = 1,
};
enum eMonitorType : int
{
    eMonitorNone = 0,
};

// "2: The system cannot find the file specified.": the code, in hexadecimal from 0x80000000 on, and the
// system's text without line ends. The rest is eSysErrMsgPlain, eMonitorNone, false.
KELVANE_EXPORT ZTString GetSystemErrorMessage(DWORD code, eSysErrMsg, eMonitorType, bool);

// --- Files and text ---

// The log directory's full path, ending in a separator; the directory is made if it is missing.
KELVANE_EXPORT ZTString GetLogDirectory();
// Size in bytes, 0 for a file that is not there.
KELVANE_EXPORT std::uint64_t ZTGetFileSize(const wchar_t* path);
// Writes the text as UTF-8 into a new file, for its owner alone, which takes the place of whatever has the
// name; nothing is written through a link there. For one caller at a time. The flags are true, true, false,
// false.
KELVANE_EXPORT bool WriteTextFileAsUTF8(const wchar_t* path, const ZTString& text, bool, bool, bool, bool);
// Symbolic links and mounted directories, not the placeholders of cloud storage and the like.
KELVANE_EXPORT bool IsFileOrDirLink(const WIN32_FIND_DATAW& findData);
// Replaces each character that a file name cannot hold on either system; never leaves a reserved name, one
// that ends in a dot or a blank, an empty one, "." or "..". The result and an extension of four characters
// make a valid name; what is too long is cut.
KELVANE_EXPORT void RemoveIllegalFileSystemCharacters(ZTString& name, const wchar_t* replacement);
// The set's texts in order, the separator between them.
KELVANE_EXPORT ZTString GetStringFromSet(const std::set<ZTString>& texts, const wchar_t* separator);
// Seconds since 1970, rounded down.
KELVANE_EXPORT std::int64_t FILETIMEToTimeT(FILETIME time);

// The UTF-8 form of a text, alive as long as the object. Half of a character becomes U+FFFD.
class KELVANE_EXPORT StrConverter
{
public:
    explicit StrConverter(const wchar_t* text);
    operator const char*() const;

private:
    std::string mNarrow;
};

// Reads a decimal number, or a hexadecimal one after 0x, with blanks around it. Every other text, and a
// number above 0xFFFFFFFF, gives 0xFFFFFFFF, which no setting takes.
KELVANE_EXPORT unsigned long wtodw(const wchar_t* text);

// --- The registry of cleanable objects ---

KELVANE_EXPORT std::set<Cleanable*>& GetgCleanables();
KELVANE_EXPORT CLockCS& GetgCleanablesCS();
KELVANE_EXPORT CLockCS& GetgCleanablesDeleteCS();
