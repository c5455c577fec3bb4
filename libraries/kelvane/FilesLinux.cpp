// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Files.h"

#include "libraries/kelvane/Text.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <thread>

namespace kelvane
{
namespace
{

constexpr mode_t kLogMode = 0640;
constexpr mode_t kLogDirectoryMode = 0750;
constexpr mode_t kSettingsMode = 0644;

class Descriptor
{
public:
    explicit Descriptor(int descriptor) : mDescriptor(descriptor) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return mDescriptor >= 0; }
    int Get() const { return mDescriptor; }
    bool Close()
    {
        const bool good = mDescriptor < 0 || close(mDescriptor) == 0;
        mDescriptor = -1;
        return good;
    }

private:
    int mDescriptor;
};

bool WriteAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// Owner and mode of the file that is replaced; a new one has those of its maker.
void TakeOver(int descriptor, const struct stat& old)
{
    // Only root may give a file away; the mode follows, since a change of the owner may clear bits of it.
    if (fchown(descriptor, old.st_uid, old.st_gid) != 0)
        errno = 0;
    fchmod(descriptor, old.st_mode & 07777);
}

bool WriteDurably(const std::filesystem::path& path, std::string_view text, const struct stat* old)
{
    Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kSettingsMode));
    if (!file.IsOpen())
        return false;
    if (old != nullptr)
        TakeOver(file.Get(), *old);
    return WriteAll(file.Get(), text) && fsync(file.Get()) == 0 && file.Close();
}

bool FlushDirectory(const std::filesystem::path& directory)
{
    const Descriptor opened(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems know no flush of a directory.
    return opened.IsOpen() && (fsync(opened.Get()) == 0 || errno == EINVAL);
}

} // namespace

std::filesystem::path NativePath(std::wstring_view path)
{
    const auto isByte = [](wchar_t character) { return character >= 0xDC80 && character <= 0xDCFF; };
    std::string native;
    for (auto at = path.begin(); at != path.end();)
    {
        const auto text = at;
        at = std::find_if(text, path.end(), isByte);
        native += Narrow({text, at});
        for (; at != path.end() && isByte(*at); ++at)
            native += static_cast<char>(*at - 0xDC00);
    }
    return native;
}

ZTString FullDirectory(const ZTString& directory)
{
    ZTString full = directory[0] == L'/' ? directory : GetPathInAppFolder(directory);
    if (full[full.GetLength() - 1] != L'/')
        full += L'/';
    return full;
}

void MakePrivateDirectory(const std::filesystem::path& directory)
{
    std::error_code ignored;
    if (mkdir(directory.c_str(), kLogDirectoryMode) == 0 || errno != ENOENT)
        return;
    std::filesystem::create_directories(directory.parent_path().parent_path(), ignored);
    mkdir(directory.c_str(), kLogDirectoryMode);
}

DirectoryLock::DirectoryLock(const std::filesystem::path& directory, std::chrono::milliseconds patience)
    : mHandle(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    // Not by a blocking call: whoever can read the directory could then hold us up for ever.
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (mHandle >= 0 && flock(static_cast<int>(mHandle), LOCK_EX | LOCK_NB) != 0)
    {
        if ((errno != EWOULDBLOCK && errno != EINTR) || std::chrono::steady_clock::now() >= deadline)
        {
            close(static_cast<int>(mHandle));
            mHandle = -1;
        }
        else
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
}

DirectoryLock::~DirectoryLock()
{
    if (IsHeld())
        close(static_cast<int>(mHandle));
}

bool DirectoryLock::IsHeld() const
{
    return mHandle >= 0;
}

// A link in the file's place is not followed: the log of an administrator is no way to other files. Nor does
// a pipe there hold anyone up.
AppendFile::AppendFile(const std::filesystem::path& path)
    : mHandle(
          open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, kLogMode))
{
}

AppendFile::~AppendFile()
{
    if (IsOpen())
        close(static_cast<int>(mHandle));
}

bool AppendFile::IsOpen() const
{
    return mHandle >= 0;
}

std::uint64_t AppendFile::Size() const
{
    struct stat status
    {
    };
    return fstat(static_cast<int>(mHandle), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

bool AppendFile::Append(std::string_view bytes, bool flush)
{
    const int descriptor = static_cast<int>(mHandle);
    ssize_t written;
    do
        written = write(descriptor, bytes.data(), bytes.size());
    while (written < 0 && errno == EINTR);
    return written == static_cast<ssize_t>(bytes.size()) && (!flush || fdatasync(descriptor) == 0);
}

FileContent ReadWholeFile(const std::filesystem::path& path, std::size_t limit)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.IsOpen())
        return {errno == ENOENT, std::nullopt};
    std::string text;
    for (char buffer[16384];;)
    {
        const ssize_t count = read(file.Get(), buffer, sizeof(buffer));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 || text.size() > limit)
            return {};
        if (count == 0)
            return {false, std::move(text)};
        text.append(buffer, static_cast<std::size_t>(count));
    }
}

bool ReplaceWholeFile(const std::filesystem::path& path, std::string_view text)
{
    // Renaming asks for rights on the directory alone.
    struct stat old
    {
    };
    const bool exists = stat(path.c_str(), &old) == 0;
    if (exists && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)
        return false;

    std::filesystem::path fresh = path;
    fresh += ".new";
    unlink(fresh.c_str()); // of a writer that was killed
    if (!WriteDurably(fresh, text, exists ? &old : nullptr) || rename(fresh.c_str(), path.c_str()) != 0)
    {
        unlink(fresh.c_str());
        return false;
    }
    return FlushDirectory(path.parent_path());
}

bool WriteFileText(const std::filesystem::path& path, std::string_view text, WriteMode mode, bool)
{
    const int how = mode == WriteMode::Append ? O_APPEND : mode == WriteMode::Replace ? O_TRUNC : O_EXCL;
    Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | how, 0666));
    return file.IsOpen() && WriteAll(file.Get(), text) && file.Close();
}

} // namespace kelvane
