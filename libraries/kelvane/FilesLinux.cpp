// SPDX-License-Identifier: MIT
#include "libraries/kelvane/Files.h"

#include "libraries/kelvane/Text.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <list>
#include <system_error>
#include <thread>
#include <utility>

namespace kelvane
{
namespace
{

constexpr mode_t kLogMode = 0640;
constexpr mode_t kLogDirectoryMode = 0750;
constexpr mode_t kSettingsMode = 0644;
constexpr mode_t kPrivateMode = 0600;
constexpr int kMostLinks = 40; // as the kernel
constexpr std::chrono::milliseconds kForeignPatience{100};

class Descriptor
{
public:
    explicit Descriptor(int descriptor) : mDescriptor(descriptor) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return mDescriptor >= 0; }
    int Get() const { return mDescriptor; }
    int Release() { return std::exchange(mDescriptor, -1); }
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

std::filesystem::path WithEnding(std::filesystem::path path, const char* ending)
{
    path += ending;
    return path;
}

// Owner and mode of the file that is replaced; a new one has those of its maker.
void TakeOver(int descriptor, const struct stat& old)
{
    // Only root may give a file away.
    if (fchown(descriptor, old.st_uid, old.st_gid) != 0)
        errno = 0;
    fchmod(descriptor, old.st_mode & 0777);
}

// Puts a new file in the place of `path`; it takes after `old`, where there is one.
bool PutInPlace(const std::filesystem::path& path, std::string_view text, mode_t mode, const struct stat* old)
{
    const std::filesystem::path fresh = WithEnding(path, ".new");
    unlink(fresh.c_str()); // of a writer that was killed
    Descriptor file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!file.IsOpen())
        return false;
    if (old != nullptr)
        TakeOver(file.Get(), *old);
    if (WriteAll(file.Get(), text) && fsync(file.Get()) == 0 && file.Close() &&
        rename(fresh.c_str(), path.c_str()) == 0)
        return true;
    const int error = errno;
    unlink(fresh.c_str());
    errno = error;
    return false;
}

// Whether the path still leads to this file.
bool IsNameOf(const std::filesystem::path& path, int descriptor)
{
    struct stat named
    {
    };
    struct stat opened
    {
    };
    return lstat(path.c_str(), &named) == 0 && fstat(descriptor, &opened) == 0 &&
           named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

bool BelongsToRoot(int descriptor)
{
    struct stat status
    {
    };
    return fstat(descriptor, &status) == 0 && status.st_uid == 0;
}

ZTString LastErrorText()
{
    return Widen(std::system_category().message(errno));
}

// What is wrong with a file that is to be written; nothing with one that has no other name, which might be
// anybody's, or none any more.
ZTString WhyNotPlain(int descriptor)
{
    struct stat status
    {
    };
    if (fstat(descriptor, &status) != 0)
        return LastErrorText();
    if (!S_ISREG(status.st_mode))
        return L"it is not a plain file";
    return status.st_nlink <= 1 ? L"" : L"it has a second name";
}

// The path without its links, whether it is there or not; nothing where a link is another account's, or where
// too many follow each other for the system.
std::optional<std::filesystem::path> WithoutLinks(const std::filesystem::path& path)
{
    std::list<std::filesystem::path> names(path.begin(), path.end());
    std::filesystem::path plain;
    for (int links = 0; !names.empty(); names.pop_front())
    {
        const std::filesystem::path& name = names.front();
        if (name.empty() || name == ".") // empty after the separator at the end
            continue;
        const std::filesystem::path part = name == ".." ? plain.parent_path() : plain / name;
        struct stat status
        {
        };
        if (lstat(part.c_str(), &status) != 0 || !S_ISLNK(status.st_mode))
        {
            plain = part;
            continue;
        }
        if (++links > kMostLinks || (status.st_uid != 0 && status.st_uid != geteuid()))
            return std::nullopt;
        std::error_code ignored;
        const std::filesystem::path target = std::filesystem::read_symlink(part, ignored);
        names.insert(std::next(names.begin()), target.begin(), target.end());
    }
    return plain;
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
    return Narrow(path);
}

ZTString FullDirectory(const ZTString& directory)
{
    ZTString full = directory[0] == L'/' ? directory : GetPathInAppFolder(directory);
    if (full[full.GetLength() - 1] != L'/')
        full += L'/';
    return full;
}

bool LeadsThroughForeignLink(const std::filesystem::path& path)
{
    return !WithoutLinks(path);
}

ZTString MakePrivateDirectory(const std::filesystem::path& directory)
{
    struct stat status
    {
    };
    if (mkdir(directory.c_str(), kLogDirectoryMode) == 0 || stat(directory.c_str(), &status) == 0)
        return {};
    const std::optional<std::filesystem::path> plain = WithoutLinks(directory);
    if (!plain)
        return L"another account has put a link there";
    std::error_code error;
    std::filesystem::create_directories(plain->parent_path(), error);
    if (error)
        return Widen(error.message());
    // Another process may have made it; what else is there, such as a link that leads to itself, is not it.
    if (mkdir(plain->c_str(), kLogDirectoryMode) != 0 &&
        (errno != EEXIST || stat(directory.c_str(), &status) != 0))
        return LastErrorText();
    return {};
}

FileLock::FileLock(const std::filesystem::path& path, std::chrono::milliseconds patience)
    : mPath(path), mHandle(-1)
{
    // Not by a blocking call: a process that is stopped would hold us up for ever.
    const auto deadline = std::chrono::steady_clock::now() + patience;
    bool replaced = false;
    while (true)
    {
        Descriptor file(
            open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, kPrivateMode));
        if (!file.IsOpen())
        {
            mProblem = LastErrorText();
            return;
        }
        const bool locked = flock(file.Get(), LOCK_EX | LOCK_NB) == 0;
        // Its last holder removes it, perhaps after we have opened it.
        if (locked && IsNameOf(path, file.Get()))
        {
            mHandle = file.Release();
            return;
        }
        const auto now = std::chrono::steady_clock::now();
        const bool isForeign = geteuid() == 0 && !locked && !replaced && !BelongsToRoot(file.Get());
        if (now >= deadline && !isForeign)
            return;
        if (isForeign && now >= deadline + kForeignPatience)
        {
            unlink(path.c_str()); // once, whether it may or not
            replaced = true;
        }
        else if (!locked)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

FileLock::~FileLock()
{
    if (!IsHeld())
        return;
    if (IsNameOf(mPath, static_cast<int>(mHandle))) // else root has taken its place
        unlink(mPath.c_str());
    close(static_cast<int>(mHandle));
}

bool FileLock::IsHeld() const
{
    return mHandle >= 0;
}

// A link in the file's place is not followed: the log of an administrator must not lead to other files. Nor
// does a pipe there hold anyone up.
AppendFile::AppendFile(const std::filesystem::path& path) : mHandle(-1)
{
    constexpr int kHow = O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    int descriptor = open(path.c_str(), O_RDWR | kHow, kLogMode);
    if (descriptor < 0 && errno == EACCES)
        descriptor = open(path.c_str(), O_WRONLY | kHow, kLogMode);
    Descriptor file(descriptor);
    if (!file.IsOpen())
        mProblem = errno == ELOOP ? ZTString(L"it is a link") : LastErrorText();
    else
        mProblem = WhyNotPlain(file.Get());
    if (mProblem.IsEmpty())
        mHandle = file.Release();
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

std::uint64_t AppendFile::SizeInMidLine() const
{
    const int descriptor = static_cast<int>(mHandle);
    struct stat status
    {
    };
    char last = '\n';
    if (fstat(descriptor, &status) != 0 || status.st_size == 0 ||
        pread(descriptor, &last, 1, status.st_size - 1) != 1 || last == '\n')
        return 0;
    return static_cast<std::uint64_t>(status.st_size);
}

void AppendFile::Append(std::string_view bytes)
{
    ssize_t written;
    do
        written = write(static_cast<int>(mHandle), bytes.data(), bytes.size());
    while (written < 0 && errno == EINTR);
    if (written == static_cast<ssize_t>(bytes.size()))
        return;
    if (written >= 0)
        errno = ENOSPC; // there was room for a part
    mProblem = LastErrorText();
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

std::optional<std::chrono::milliseconds> SinceLastWrite(const std::filesystem::path& path)
{
    std::error_code error;
    const auto written = std::filesystem::last_write_time(path, error);
    if (error)
        return std::nullopt;
    return std::chrono::round<std::chrono::milliseconds>(decltype(written)::clock::now() - written);
}

ZTString ReplaceWholeFile(const std::filesystem::path& path, std::string_view text)
{
    // Renaming asks for rights on the directory alone.
    struct stat old
    {
    };
    const bool exists = stat(path.c_str(), &old) == 0;
    if ((exists && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) ||
        !PutInPlace(path, text, kSettingsMode, exists ? &old : nullptr) ||
        !FlushDirectory(path.parent_path()))
        return LastErrorText();
    return {};
}

bool WritePrivateFile(const std::filesystem::path& path, std::string_view text)
{
    return PutInPlace(path, text, kPrivateMode, nullptr);
}

} // namespace kelvane
