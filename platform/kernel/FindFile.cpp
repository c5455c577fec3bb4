// SPDX-License-Identifier: MIT
#include "platform/kernel/Handle.h"
#include "platform/kernel/Text.h"
#include "text/Unicode.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

using namespace platform;

namespace
{

// 100 ns units since 1601, of which 1970 is this many seconds away.
constexpr std::int64_t kSecondsTo1970 = 11644473600;

FILETIME FileTimeOf(const struct statx_timestamp& time)
{
    const std::int64_t units = (time.tv_sec + kSecondsTo1970) * 10000000 + time.tv_nsec / 100;
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

bool FillData(int folder, const char* name, std::wstring_view wideName, WIN32_FIND_DATAW& data)
{
    struct statx status = {};
    constexpr unsigned kWanted = STATX_TYPE | STATX_MTIME;
    if (statx(folder, name, AT_SYMLINK_NOFOLLOW, kWanted, &status) != 0)
        return false;
    data = {};
    unsigned mode = status.stx_mode;
    if (S_ISLNK(status.stx_mode))
    {
        struct stat target = {};
        mode = fstatat(folder, name, &target, 0) == 0 ? target.st_mode : S_IFREG;
        data.dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
        data.dwReserved0 = IO_REPARSE_TAG_SYMLINK;
    }
    const bool directory = S_ISDIR(mode);
    if (directory)
        data.dwFileAttributes |= FILE_ATTRIBUTE_DIRECTORY;
    if (data.dwFileAttributes == 0)
        data.dwFileAttributes = FILE_ATTRIBUTE_NORMAL;
    // A pipe, a socket or a device holds no text, and who opens it may wait for ever: it counts as written
    // before everything else.
    if (directory || S_ISREG(mode))
        data.ftLastWriteTime = FileTimeOf(status.stx_mtime);
    return CopyOut(wideName, data.cFileName, MAX_PATH);
}

class Listing : public HandleObject
{
public:
    explicit Listing(DIR* folder) : mFolder(folder) {}
    ~Listing() override { closedir(mFolder); }

    // False after the last entry. One that vanishes meanwhile is passed over, and so is one that cannot be
    // looked at: who goes on to open it meets the reason.
    bool Next(WIN32_FIND_DATAW& data)
    {
        while (const dirent* entry = readdir(mFolder))
            if (FillData(dirfd(mFolder), entry->d_name, text::FromUtf8(entry->d_name), data))
                return true;
        return false;
    }

private:
    DIR* mFolder;
};

} // namespace

HANDLE FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW data)
{
    const std::string path = text::ToUtf8(pattern);
    if (!path.ends_with("/*"))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    DIR* folder = opendir(path.substr(0, path.size() - 1).c_str());
    if (folder == nullptr)
    {
        const DWORD error = errno == ENOTDIR ? ERROR_DIRECTORY : ErrorFromErrno(errno);
        SetLastError(error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : error);
        return INVALID_HANDLE_VALUE;
    }
    auto listing = std::make_shared<Listing>(folder);
    if (!listing->Next(*data))
    {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    return MakeHandle(std::move(listing));
}

BOOL FindNextFileW(HANDLE find, LPWIN32_FIND_DATAW data)
{
    const auto listing = ObjectOf<Listing>(find);
    if (listing == nullptr)
        return FALSE;
    return listing->Next(*data) ? TRUE : FailWith(ERROR_NO_MORE_FILES);
}

BOOL FindClose(HANDLE find)
{
    return CloseHandleOf<Listing>(find);
}

BOOL DeleteFileW(LPCWSTR path)
{
    return unlink(text::ToUtf8(path).c_str()) == 0 ? TRUE : FailWithErrno(errno);
}
