// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <utility>

// Whether some process holds the event of that name; this one holds it no longer.
bool IsHeld(const std::wstring& name);

// In front of a command line: runs it as a user without rights; Linux, as root.
const std::wstring kAsNobody = L"/usr/bin/setpriv --reuid=65534 --regid=65534 --clear-groups ";

// A process that a test starts.
class ChildProcess
{
public:
    // `line` is the command line as it stands; without a folder it runs in this process's one. What is hidden
    // shows no window, and on Linux reads and writes nothing of ours.
    explicit ChildProcess(std::wstring line, const std::filesystem::path& folder = {}, bool isHidden = true);
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept : mInformation(std::exchange(other.mInformation, {})) {}
    ChildProcess& operator=(ChildProcess&&) = delete;

    HANDLE Handle() const { return mInformation.hProcess; }
    DWORD Id() const { return mInformation.dwProcessId; }

    // Waits for its end, for two minutes at most.
    DWORD ExitCode() const;

    // Ends it without a chance to clean up, and waits until it is gone.
    void Kill() const;

private:
    PROCESS_INFORMATION mInformation = {};
};
