// SPDX-License-Identifier: MIT
#include "libraries/ipworks/LocalFile.h"

#include "text/Unicode.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

LocalFile::File LocalFile::OpenOwn(const std::wstring& path, std::int64_t& size, std::string& problem)
{
    // Without waiting, should it be a pipe.
    const int descriptor = open(text::ToUtf8(path).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    struct stat status = {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0)
        problem = errno == ELOOP ? "It is a link." : std::generic_category().message(errno);
    else if (S_ISDIR(status.st_mode))
        problem = std::generic_category().message(EISDIR);
    else if (!S_ISREG(status.st_mode))
        problem = "It is not a plain file.";
    else if (status.st_uid != geteuid())
        problem = "It belongs to another account.";
    else if (status.st_nlink != 1)
        problem = "It has a second name elsewhere.";
    if (descriptor >= 0 && problem.empty())
    {
        size = status.st_size;
        return File(fdopen(descriptor, "rb"));
    }
    if (descriptor >= 0)
        close(descriptor);
    return nullptr;
}
