// SPDX-License-Identifier: MIT
// Starts kernelPeer, which lies beside the test program.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

class PeerProcess
{
public:
    // `arguments` go behind the program on its command line, as they stand.
    explicit PeerProcess(const std::wstring& arguments, const std::filesystem::path& folder = {});
    ~PeerProcess();
    PeerProcess(const PeerProcess&) = delete;
    PeerProcess& operator=(const PeerProcess&) = delete;

    bool Started() const { return mInformation.hProcess != nullptr; }
    HANDLE Handle() const { return mInformation.hProcess; }
    DWORD Id() const { return mInformation.dwProcessId; }
    bool IsRunning() const { return WaitForSingleObject(Handle(), 0) == WAIT_TIMEOUT; }

    // Waits for its end, for a minute at most.
    DWORD ExitCode() const;

    // Ends it without a chance to clean up, and waits until it is gone.
    void Kill() const;

private:
    PROCESS_INFORMATION mInformation = {};
};

// A name that no other test run uses at the same time.
std::wstring UniqueName(const std::wstring& name);

std::filesystem::path FolderOfThisProgram();
