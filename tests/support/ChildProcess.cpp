// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"

#include <stdexcept>

bool IsHeld(const std::wstring& name)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, name.c_str());
    const bool isHeld = GetLastError() == ERROR_ALREADY_EXISTS;
    CloseHandle(event);
    return isHeld;
}

ChildProcess::ChildProcess(std::wstring line, const std::filesystem::path& folder, bool isHidden)
{
    const std::wstring directory = folder.wstring();
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = isHidden ? STARTF_USESHOWWINDOW : 0;
    startup.wShowWindow = SW_HIDE;
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                        directory.empty() ? nullptr : directory.c_str(), &startup, &mInformation))
        throw std::runtime_error("cannot be started: " + std::filesystem::path(line).string());
}

ChildProcess::~ChildProcess()
{
    if (Handle() == nullptr)
        return;
    CloseHandle(mInformation.hThread);
    CloseHandle(mInformation.hProcess);
}

DWORD ChildProcess::ExitCode() const
{
    DWORD code = STILL_ACTIVE;
    WaitForSingleObject(Handle(), 120'000);
    GetExitCodeProcess(Handle(), &code);
    return code;
}

void ChildProcess::Kill() const
{
    TerminateProcess(Handle(), 1);
    WaitForSingleObject(Handle(), INFINITE);
}
