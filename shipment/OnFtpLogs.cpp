// SPDX-License-Identifier: MIT
// A shipment from its start to its end: packs the log directory, sends the archive, and leaves nothing
// behind.
#include "app/CmdLineParser.h"
#include "base/Owned.h"
#include "console/TavoDlg.h"
#include "foundation/EndOfRun.h"
#include "foundation/Kelvane.h"
#include "shipment/FtpUpload.h"
#include "shipment/PackingLimit.h"
#include "shipment/ShipmentPlan.h"

#include <process.h>
#include <time.h>

#include <memory>

namespace
{

constexpr DWORD kPackingStep = 100; // milliseconds, here and below
constexpr DWORD kPauseBeforeUpload = 2000;
constexpr DWORD kUploadStep = 1000;
constexpr DWORD kNoExitCode = 0xFFFFFFFF;
constexpr auto kNoThread = static_cast<std::uintptr_t>(-1);

using Handle = Owned<void, CloseHandle>;

ZTString SystemErrorText(DWORD code)
{
    return GetSystemErrorMessage(code, eSysErrMsgPlain, eMonitorNone, false);
}

// Writes the list of files that the archiver leaves out. False when there are none; the list is empty then.
bool WriteIgnoreList(CTavoDlg& console, const ZTString& listPath)
{
    const std::set<ZTString> names = OldFileNames(GetLogDirectory(), _time64(nullptr) - kOldestAge);
    const ZTString text = GetStringFromSet(names, L"\r\n");
    {
        const EndOfRunWaits wait;
        WriteTextFileAsUTF8(listPath, text, true, true, false, false);
    }
    if (names.empty())
        return false;
    console.AppendLine(_StrFormat(L"FTP_LOG: Ignoring:\r\n{0}\r\n", {text}));
    return true;
}

// The archiver's process, or null after a line that says why it could not be started. `running` is the
// process, too, for an end of the run.
Handle StartArchiver(CTavoDlg& console, const ZTString& commandLine, HANDLE& running)
{
    console.AppendLine(_StrFormat(L"FTP_LOG: Starting compression via: [{0}]\r\n", {commandLine}));
    console.AppendLine(L"FTP_LOG: Please wait...\r\n");

    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process{};
    ZTString buffer = commandLine;
    {
        const EndOfRunWaits wait;
        if (CreateProcessW(nullptr, buffer.GetBuffer(buffer.GetLength()), nullptr, nullptr, TRUE, 0, nullptr,
                           GetLogDirectory(), &startup, &process) != FALSE)
            running = process.hProcess;
    }
    if (running == nullptr)
    {
        const ZTString error = SystemErrorText(GetLastError());
        console.AppendLine(
            _StrFormat(L"FTP_LOG: Failed to launch before FTP: [{0}]  Err={1}\r\n", {commandLine, error}));
        return nullptr;
    }
    CloseHandle(process.hThread);
    return Handle(process.hProcess);
}

// Serves the console until the archiver has ended. False when it took too long; it then goes on alone.
bool WaitForArchiver(CTavoDlg& console, HANDLE archiver)
{
    const std::int64_t start = _time64(nullptr);
    while (WaitForSingleObject(archiver, kPackingStep) != WAIT_OBJECT_0)
    {
        PumpMessages(nullptr, 0);
        if (_time64(nullptr) > start + kPackingLimit)
        {
            console.AppendLine(L"FTP_LOG: Timed out waiting for log compression\r\n");
            return false;
        }
    }
    DWORD exitCode = kNoExitCode;
    GetExitCodeProcess(archiver, &exitCode);
    console.AppendLine(_StrFormat(L"FTP_LOG: Compression finished.  Exit Code: {0}\r\n", {exitCode}));
    return true;
}

bool PackLogs(CTavoDlg& console, const ZTString& commandLine)
{
    Handle archiver;
    HANDLE running = nullptr;
    const AtEndOfRun kill(
        [&running]
        {
            constexpr DWORD kPatience = 500;
            TerminateProcess(running, 1);
            WaitForSingleObject(running, kPatience);
        });
    archiver = StartArchiver(console, commandLine, running);
    return archiver && WaitForArchiver(console, archiver.get());
}

// Serves the console, a second at a time, until the upload thread has finished.
void UploadArchive(CTavoDlg& console, const ZTString& archivePath, const ZTString& archiveName)
{
    Sleep(kPauseBeforeUpload);
    console.AppendLine(L"FTP_LOG: Beginning upload\r\n");

    gbFTPDone = false;
    auto args = std::make_unique<FTPProcArgs>(FTPProcArgs{archivePath, archiveName + L".zip"});
    if (_beginthread(&FTPProc, 0, args.get()) == kNoThread)
    {
        const ZTString error = SystemErrorText(GetLastError());
        console.AppendLine(_StrFormat(L"FTP_LOG: Log FTP failed with: {0}\r\n", {error}));
        return;
    }
    static_cast<void>(args.release()); // the thread's
    while (!gbFTPDone)
    {
        Sleep(kUploadStep);
        PumpMessages(nullptr, 0);
    }
    // The thread's last lines may have come after the last look, or all of them before the first; an
    // unattended run would end without them.
    PumpMessages(nullptr, 0);
}

} // namespace

LRESULT CTavoDlg::OnFtpLogs(WPARAM, LPARAM)
{
    const ZTString archiveName = ArchiveName(gCmdLineParser.GetVal(L"FTP_LOG"));
    const ZTString archivePath = GetLogDirectory() + archiveName + L".zip";
    const ZTString listPath = GetLogDirectory() + kIgnoreListName;
    AppendLine(_StrFormat(L"FTP_LOG: Sending logs in: {0}\r\n", {GetLogDirectory()}));
    AppendLine(_StrFormat(L"FTP_LOG: Sending logs to support as: {0}\r\n", {archivePath}));

    const AtEndOfRun leaveNothing([archivePath, listPath] { DeleteArchiveAndList(archivePath, listPath); });
    DeleteArchiveAndList(archivePath, listPath); // what an interrupted shipment left behind
    const bool hasIgnoreList = WriteIgnoreList(*this, listPath);
    if (PackLogs(*this, ArchiverCommandLine(hasIgnoreList, archivePath)))
        UploadArchive(*this, archivePath, archiveName);

    DeleteArchiveAndList(archivePath, listPath);
    if (mAutoClose)
        EndDialog(1);
    return 0;
}
