// SPDX-License-Identifier: MIT
#include "tests/kernel/PeerProcess.h"

#include <array>
#include <chrono>

PeerProcess::PeerProcess(const std::wstring& arguments, const std::filesystem::path& folder)
{
    std::wstring line = L"\"" + (FolderOfThisProgram() / L"kernelPeer").wstring() + L"\" " + arguments;
    const std::wstring directory = folder.wstring();
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                   directory.empty() ? nullptr : directory.c_str(), &startup, &mInformation);
}

PeerProcess::~PeerProcess()
{
    if (Started())
    {
        CloseHandle(mInformation.hThread);
        CloseHandle(mInformation.hProcess);
    }
}

DWORD PeerProcess::ExitCode() const
{
    constexpr DWORD kMinute = 60000;
    DWORD code = STILL_ACTIVE;
    WaitForSingleObject(Handle(), kMinute);
    GetExitCodeProcess(Handle(), &code);
    return code;
}

std::wstring UniqueName(const std::wstring& name)
{
    static const auto start = std::chrono::steady_clock::now().time_since_epoch().count();
    return L"Tavo_Test_" + std::to_wstring(start) + L"_" + name;
}

std::filesystem::path FolderOfThisProgram()
{
    std::array<wchar_t, 4096> path = {};
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return std::filesystem::path(path.data()).parent_path();
}
