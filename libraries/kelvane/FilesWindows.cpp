// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Files.h"

#include "foundation/Kelvane.h"
#include "libraries/kelvane/Text.h"

namespace kelvane
{
namespace
{

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kRetryMs = 10;
constexpr int kReadRetries = 20;
constexpr int kMoveRetries = 200;
constexpr std::chrono::seconds kLongestDeletion{1}; // of a file that the system removes with its last handle

HANDLE ToHandle(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

// Somebody else holds the file for a moment: a reader, a virus scanner, a search indexer.
bool IsPassing(DWORD error)
{
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION || error == ERROR_ACCESS_DENIED;
}

HANDLE Open(const std::filesystem::path& path, DWORD access, DWORD share, DWORD disposition,
            DWORD flags = FILE_ATTRIBUTE_NORMAL)
{
    return CreateFileW(path.c_str(), access, share, nullptr, disposition, flags, nullptr);
}

ZTString ErrorText(DWORD error)
{
    return GetSystemErrorMessage(error, eSysErrMsgPlain, eMonitorNone, false);
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

bool PutInPlace(const std::filesystem::path& path, std::string_view text)
{
    std::filesystem::path fresh = path;
    fresh += L".new";
    DeleteFileW(fresh.c_str()); // of a writer that was killed
    const HANDLE file = Open(fresh, GENERIC_WRITE, 0, CREATE_NEW);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool written = WriteAll(file, text) && FlushFileBuffers(file);
    DWORD error = GetLastError();
    CloseHandle(file);
    if (written && MoveOver(fresh, path))
        return true;
    error = written ? GetLastError() : error;
    DeleteFileW(fresh.c_str());
    SetLastError(error);
    return false;
}

} // namespace

std::filesystem::path NativePath(std::wstring_view path)
{
    return path;
}

ZTString FullDirectory(const ZTString& directory)
{
    std::filesystem::path full = directory.GetString();
    full.make_preferred();
    // One of another machine is absolute, too, which the library denies; one from the root lies on the drive
    // of the program's folder.
    if (!full.native().starts_with(L"\\\\") && !full.is_absolute())
        full = std::filesystem::path(GetPathInAppFolder(L"").GetString()) / full;
    full /= ""; // a separator at the end
    return full.c_str();
}

// Junctions are not looked for.
bool LeadsThroughForeignLink(const std::filesystem::path&)
{
    return false;
}

// The access list is inherited from the directory above.
ZTString MakePrivateDirectory(const std::filesystem::path& directory)
{
    std::error_code error;
    std::filesystem::create_directories(directory.parent_path(), error);
    return error ? Widen(error.message()) : ZTString(); // a code of the C library
}

// The system removes the file with its handle. Until then it lets nobody open it.
FileLock::FileLock(const std::filesystem::path& path, std::chrono::milliseconds patience)
    : mPath(path), mHandle(0)
{
    using SteadyClock = std::chrono::steady_clock;
    const auto start = SteadyClock::now();
    auto lastHeld = start; // by somebody; what is denied after that is being deleted, or not allowed
    // Without the last flag, the file that a link leads to would be removed.
    constexpr DWORD kHow = FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT;
    HANDLE file;
    DWORD error = ERROR_SUCCESS;
    while ((file = Open(path, GENERIC_WRITE | DELETE, 0, OPEN_ALWAYS, kHow)) == INVALID_HANDLE_VALUE)
    {
        error = GetLastError();
        const auto now = SteadyClock::now();
        if (error != ERROR_ACCESS_DENIED)
            lastHeld = now;
        if (!IsPassing(error) || now - start >= patience || now - lastHeld >= kLongestDeletion)
            break;
        Sleep(1);
    }
    if (file != INVALID_HANDLE_VALUE)
        mHandle = reinterpret_cast<std::intptr_t>(file);
    else if (error != ERROR_SHARING_VIOLATION)
        mProblem = ErrorText(error);
}

FileLock::~FileLock()
{
    if (IsHeld())
        CloseHandle(ToHandle(mHandle));
}

bool FileLock::IsHeld() const
{
    return mHandle != 0;
}

AppendFile::AppendFile(const std::filesystem::path& path)
    : mHandle(reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE))
{
    constexpr DWORD kHow = FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE;
    HANDLE file = Open(path, kHow | FILE_READ_DATA, kShareAll, OPEN_ALWAYS, FILE_FLAG_OPEN_REPARSE_POINT);
    if (file == INVALID_HANDLE_VALUE)
        file = Open(path, kHow, kShareAll, OPEN_ALWAYS, FILE_FLAG_OPEN_REPARSE_POINT);
    BY_HANDLE_FILE_INFORMATION about{};
    if (file == INVALID_HANDLE_VALUE || !GetFileInformationByHandle(file, &about))
        mProblem = ErrorText(GetLastError());
    else if ((about.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        mProblem = L"it is a link";
    else if (about.nNumberOfLinks > 1)
        mProblem = L"it has a second name";
    if (mProblem.IsEmpty())
        mHandle = reinterpret_cast<std::intptr_t>(file);
    else if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
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

std::uint64_t AppendFile::SizeInMidLine() const
{
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(ToHandle(mHandle), &size) || size.QuadPart == 0)
        return 0;
    const auto at = static_cast<std::uint64_t>(size.QuadPart - 1);
    OVERLAPPED where{};
    where.Offset = static_cast<DWORD>(at);
    where.OffsetHigh = static_cast<DWORD>(at >> 32U);
    char last = '\n';
    DWORD count = 0;
    const bool read = ReadFile(ToHandle(mHandle), &last, 1, &count, &where) && count == 1;
    return read && last != '\n' ? at + 1 : 0;
}

void AppendFile::Append(std::string_view bytes)
{
    DWORD written = 0;
    if (!WriteFile(ToHandle(mHandle), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
        mProblem = ErrorText(GetLastError());
    else if (written != bytes.size())
        mProblem = ErrorText(ERROR_DISK_FULL); // there was room for a part
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

std::optional<std::chrono::milliseconds> SinceLastWrite(const std::filesystem::path& path)
{
    // By the file itself: what the folder says of it may be older.
    const HANDLE file = Open(path, FILE_READ_ATTRIBUTES, kShareAll, OPEN_EXISTING);
    if (file == INVALID_HANDLE_VALUE)
        return std::nullopt;
    FILETIME written{};
    FILETIME now{};
    const BOOL known = GetFileTime(file, nullptr, nullptr, &written);
    CloseHandle(file);
    GetSystemTimeAsFileTime(&now);
    const auto ticks = [](const FILETIME& time) // of 100 ns
    { return std::int64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; };
    if (!known)
        return std::nullopt;
    return std::chrono::milliseconds((ticks(now) - ticks(written)) / 10'000);
}

ZTString ReplaceWholeFile(const std::filesystem::path& path, std::string_view text)
{
    if (MayWrite(path) && PutInPlace(path, text))
        return {};
    return ErrorText(GetLastError());
}

// The access list is inherited from the directory.
bool WritePrivateFile(const std::filesystem::path& path, std::string_view text)
{
    return PutInPlace(path, text);
}

} // namespace kelvane
