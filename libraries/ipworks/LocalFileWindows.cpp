// SPDX-License-Identifier: MIT
#include "libraries/ipworks/LocalFile.h"

#include "text/Unicode.h"

#include <windows.h>

#include <aclapi.h>
#include <fcntl.h>
#include <io.h>

#include <iterator>

namespace
{

std::string SystemText(DWORD code)
{
    wchar_t text[512] = L"";
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                   nullptr, code, 0, text, std::size(text), nullptr);
    const std::string utf8 = text::ToUtf8(text);
    return utf8.substr(0, utf8.find_last_not_of(' ') + 1);
}

// A scanner or a backup may hold a new file for a moment.
HANDLE OpenPatiently(const wchar_t* path)
{
    constexpr int kTries = 20;
    constexpr DWORD kPause = 100; // in ms
    for (int tries = 1;; ++tries)
    {
        const HANDLE file = CreateFileW(
            path, GENERIC_READ | READ_CONTROL, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
            nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
        if (file != INVALID_HANDLE_VALUE || GetLastError() != ERROR_SHARING_VIOLATION || tries == kTries)
            return file;
        Sleep(kPause);
    }
}

// An elevated process owns what it makes by a group, so both of its accounts count.
bool IsOwn(HANDLE file)
{
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetSecurityInfo(file, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr, nullptr,
                        &descriptor) != ERROR_SUCCESS ||
        owner == nullptr)
        return false;
    HANDLE token = nullptr;
    // A file system without owners names everybody, which nobody can give a file where there are owners.
    bool found = IsWellKnownSid(owner, WinWorldSid);
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token);
    for (const TOKEN_INFORMATION_CLASS kind : {TokenUser, TokenOwner})
    {
        // Both begin with the pointer to the account.
        alignas(void*) BYTE account[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
        DWORD length = 0;
        if (GetTokenInformation(token, kind, account, sizeof account, &length))
            found = found || EqualSid(owner, reinterpret_cast<const TOKEN_OWNER*>(account)->Owner);
    }
    CloseHandle(token);
    LocalFree(descriptor);
    return found;
}

} // namespace

LocalFile::File LocalFile::OpenOwn(const std::wstring& path, std::int64_t& size, std::string& problem)
{
    const HANDLE handle = OpenPatiently(path.c_str());
    BY_HANDLE_FILE_INFORMATION status{};
    if (handle == INVALID_HANDLE_VALUE || !GetFileInformationByHandle(handle, &status))
        problem = SystemText(GetLastError());
    else if ((status.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        problem = "It is a link.";
    else if (!IsOwn(handle))
        problem = "It belongs to another account.";
    else if (status.nNumberOfLinks > 1)
        problem = "It has a second name elsewhere.";
    if (handle != INVALID_HANDLE_VALUE && problem.empty())
    {
        size = static_cast<std::int64_t>(status.nFileSizeHigh) << 32 | status.nFileSizeLow;
        return File(
            _fdopen(_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_RDONLY | _O_BINARY), "rb"));
    }
    if (handle != INVALID_HANDLE_VALUE)
        CloseHandle(handle);
    return nullptr;
}
