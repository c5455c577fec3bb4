// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Files.h"

#include "libraries/kelvane/Text.h"
#include "text/FoldCase.h"

namespace kelvane
{
namespace
{

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kRetryMs = 10;
constexpr int kReadRetries = 20;
constexpr int kMoveRetries = 200;

HANDLE ToHandle(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

// Somebody else holds the file for a moment: a reader, a virus scanner, a search indexer.
bool IsPassing(DWORD error)
{
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION || error == ERROR_ACCESS_DENIED;
}

HANDLE Open(const std::filesystem::path& path, DWORD access, DWORD share, DWORD disposition)
{
    return CreateFileW(path.c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool WriteAll(HANDLE file, std::string_view bytes)
{
    while (!bytes.empty())
    {
        DWORD written = 0;
        const DWORD count = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 20));
        if (!WriteFile(file, bytes.data(), count, &written, nullptr) || written == 0)
            return false;
        bytes.remove_prefix(written);
    }
    return true;
}

bool WriteDurably(const std::filesystem::path& path, std::string_view text)
{
    const HANDLE file = Open(path, GENERIC_WRITE, 0, CREATE_ALWAYS);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool written = WriteAll(file, text) && FlushFileBuffers(file);
    CloseHandle(file);
    return written;
}

bool MayWrite(const std::filesystem::path& path)
{
    const HANDLE file = Open(path, GENERIC_WRITE, kShareAll, OPEN_EXISTING);
    if (file == INVALID_HANDLE_VALUE)
        return GetLastError() != ERROR_ACCESS_DENIED;
    CloseHandle(file);
    return true;
}

bool MoveOver(const std::filesystem::path& from, const std::filesystem::path& to)
{
    for (int tries = 0;
         !MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH); ++tries)
    {
        if (!IsPassing(GetLastError()) || tries == kMoveRetries)
            return false;
        Sleep(kRetryMs);
    }
    return true;
}

} // namespace

std::filesystem::path NativePath(std::wstring_view path)
{
    return path;
}

ZTString FullDirectory(const ZTString& directory)
{
    std::filesystem::path full = directory.GetString();
    if (!full.is_absolute())
        full = GetPathInAppFolder(directory).GetString();
    full.make_preferred();
    full /= ""; // a separator at the end
    return full.c_str();
}

// The access list is inherited from the directory above.
void MakePrivateDirectory(const std::filesystem::path& directory)
{
    std::error_code ignored;
    std::filesystem::create_directories(directory.parent_path(), ignored);
}

// A mutex named after the directory.
DirectoryLock::DirectoryLock(const std::filesystem::path& directory, std::chrono::milliseconds patience)
    : mHandle(0)
{
    std::wstring folded = directory;
    text::FoldCase(folded.data(), folded.size());
    ZTString name;
    name.Format(L"Global\\Tavo_Directory_{0}", CRC64(folded.data(), folded.size() * sizeof(wchar_t)));

    // A null access list: a process of another user has the same right to wait.
    SECURITY_DESCRIPTOR descriptor;
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE);
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), &descriptor, FALSE};
    const HANDLE mutex = CreateMutexW(&attributes, FALSE, name);
    if (mutex == nullptr)
        return;
    const DWORD result = WaitForSingleObject(mutex, static_cast<DWORD>(patience.count()));
    if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED)
        mHandle = reinterpret_cast<std::intptr_t>(mutex);
    else
        CloseHandle(mutex);
}

DirectoryLock::~DirectoryLock()
{
    if (!IsHeld())
        return;
    ReleaseMutex(ToHandle(mHandle));
    CloseHandle(ToHandle(mHandle));
}

bool DirectoryLock::IsHeld() const
{
    return mHandle != 0;
}

AppendFile::AppendFile(const std::filesystem::path& path)
    : mHandle(
          reinterpret_cast<std::intptr_t>(Open(path, FILE_APPEND_DATA | SYNCHRONIZE, kShareAll, OPEN_ALWAYS)))
{
}

AppendFile::~AppendFile()
{
    if (IsOpen())
        CloseHandle(ToHandle(mHandle));
}

bool AppendFile::IsOpen() const
{
    return ToHandle(mHandle) != INVALID_HANDLE_VALUE;
}

std::uint64_t AppendFile::Size() const
{
    LARGE_INTEGER size{};
    return GetFileSizeEx(ToHandle(mHandle), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

bool AppendFile::Append(std::string_view bytes, bool flush)
{
    DWORD written = 0;
    return WriteFile(ToHandle(mHandle), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size() && (!flush || FlushFileBuffers(ToHandle(mHandle)));
}

FileContent ReadWholeFile(const std::filesystem::path& path, std::size_t limit)
{
    HANDLE file;
    for (int tries = 0; (file = Open(path, GENERIC_READ, kShareAll, OPEN_EXISTING)) == INVALID_HANDLE_VALUE;
         ++tries)
    {
        const DWORD error = GetLastError();
        if (!IsPassing(error) || tries == kReadRetries)
            return {error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND, std::nullopt};
        Sleep(kRetryMs);
    }
    std::string text;
    char buffer[16384];
    DWORD count = 0;
    bool read;
    while ((read = ReadFile(file, buffer, sizeof(buffer), &count, nullptr)) && count != 0 &&
           text.size() <= limit)
        text.append(buffer, count);
    CloseHandle(file);
    if (!read || text.size() > limit)
        return {};
    return {false, std::move(text)};
}

bool ReplaceWholeFile(const std::filesystem::path& path, std::string_view text)
{
    if (!MayWrite(path))
        return false;
    std::filesystem::path fresh = path;
    fresh += L".new";
    if (WriteDurably(fresh, text) && MoveOver(fresh, path))
        return true;
    DeleteFileW(fresh.c_str());
    return false;
}

bool WriteFileText(const std::filesystem::path& path, std::string_view text, WriteMode mode, bool share)
{
    const DWORD access = mode == WriteMode::Append ? FILE_APPEND_DATA : GENERIC_WRITE;
    const DWORD disposition = mode == WriteMode::Append    ? OPEN_ALWAYS
                              : mode == WriteMode::Replace ? CREATE_ALWAYS
                                                           : CREATE_NEW;
    const HANDLE file = Open(path, access, share ? FILE_SHARE_READ | FILE_SHARE_WRITE : 0, disposition);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool written = WriteAll(file, text);
    CloseHandle(file);
    return written;
}

} // namespace kelvane
