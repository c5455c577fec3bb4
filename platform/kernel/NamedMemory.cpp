// SPDX-License-Identifier: MIT
#include "platform/kernel/NamedMemory.h"

#include "platform/kernel/Error.h"
#include "text/Unicode.h"
#include "winerror.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>
#include <utility>

namespace
{

// Locks lie on two bytes of the file: one guards opening and closing, one is shared by all holders.
constexpr off_t kGuard = 0;
constexpr off_t kHolder = 1;

// The guard is held for moments. Any user may open the file, so one who keeps it must not hold a shipment up
// for ever: after some seconds the name cannot be had.
constexpr std::chrono::seconds kPatience{5};

bool Lock(int file, off_t byte, short type)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (fcntl(file, F_OFD_SETLK, &lock) != 0)
    {
        if (errno != EAGAIN && errno != EACCES && errno != EINTR)
            return false;
        if (std::chrono::steady_clock::now() > end)
        {
            errno = EACCES;
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

bool IsHeldByOthers(int file)
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = kHolder;
    lock.l_len = 1;
    return fcntl(file, F_OFD_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

// One file name for each name: what could mean something in a path is written as %XX.
std::string PathOf(const std::wstring& name)
{
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string path = "/dev/shm/tavo.";
    for (const char byte : text::ToUtf8(name))
    {
        const auto code = static_cast<unsigned char>(byte);
        if (code <= ' ' || byte == '/' || byte == '%')
            path += {'%', kHex[code >> 4], kHex[code & 0xF]};
        else
            path += byte;
    }
    return path;
}

// The file appears under its name with its final mode, or not at all: another user who comes at the same
// moment never meets a half-made one. Opening with O_CREAT would fail for another user's file in a sticky
// directory (fs.protected_regular).
int OpenFile(const std::string& path, mode_t mode)
{
    for (;;)
    {
        int file = open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
        if (file >= 0 || errno != ENOENT)
            return file;
        file = open("/dev/shm", O_TMPFILE | O_RDWR | O_CLOEXEC, mode);
        if (file < 0)
            return file;
        const std::string link = "/proc/self/fd/" + std::to_string(file);
        if (fchmod(file, mode) == 0 &&
            linkat(AT_FDCWD, link.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0)
            return file;
        const int error = errno;
        close(file);
        if (error != EEXIST)
        {
            errno = error;
            return -1;
        }
    }
}

// Opens the file and takes the guard. A file that its last holder unlinked meanwhile is of no use.
int OpenGuarded(const std::string& path, mode_t mode)
{
    for (;;)
    {
        const int file = OpenFile(path, mode);
        if (file < 0)
            return file;
        struct stat status = {};
        if (!Lock(file, kGuard, F_WRLCK) || fstat(file, &status) != 0)
        {
            const int error = errno;
            close(file);
            errno = error;
            return -1;
        }
        if (status.st_nlink > 0)
            return file;
        close(file);
    }
}

// Closes on the way out unless the file was handed on.
class OpenedFile
{
public:
    explicit OpenedFile(int file) : mFile(file) {}
    ~OpenedFile()
    {
        if (mFile >= 0)
            close(mFile);
    }
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    int Get() const { return mFile; }
    int Release() { return std::exchange(mFile, -1); }

private:
    int mFile;
};

} // namespace

std::unique_ptr<NamedMemory> NamedMemory::Open(const std::wstring& name, Access access, const void* content,
                                               std::size_t size, bool& existed)
{
    std::string path = PathOf(name);
    OpenedFile file(OpenGuarded(path, access == Access::Everybody ? 0666 : 0600));
    if (file.Get() < 0)
    {
        FailWithErrno(errno);
        return nullptr;
    }
    existed = IsHeldByOthers(file.Get());
    struct stat status = {};
    const auto bytes = static_cast<off_t>(size);
    if (!existed && (ftruncate(file.Get(), 0) != 0 || ftruncate(file.Get(), bytes) != 0))
    {
        FailWithErrno(errno);
        return nullptr;
    }
    if (fstat(file.Get(), &status) != 0 || status.st_size != bytes)
    {
        FailWith(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    void* data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    if (data == MAP_FAILED)
    {
        FailWithErrno(errno);
        return nullptr;
    }
    if (!existed)
        std::memcpy(data, content, size);
    if (!Lock(file.Get(), kHolder, F_RDLCK))
    {
        FailWithErrno(errno);
        munmap(data, size);
        return nullptr;
    }
    Lock(file.Get(), kGuard, F_UNLCK);
    return std::unique_ptr<NamedMemory>(new NamedMemory(file.Release(), std::move(path), data, size));
}

NamedMemory::NamedMemory(int file, std::string path, void* data, std::size_t size)
    : mFile(file), mPath(std::move(path)), mData(data), mSize(size)
{
}

NamedMemory::~NamedMemory()
{
    munmap(mData, mSize);
    if (Lock(mFile, kGuard, F_WRLCK) && !IsHeldByOthers(mFile))
        unlink(mPath.c_str()); // fails for another user's file, which then stays, held by nobody
    close(mFile);
}
