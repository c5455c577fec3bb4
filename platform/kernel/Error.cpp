// SPDX-License-Identifier: MIT
#include "platform/kernel/Error.h"

#include "winbase.h"

#include <cerrno>

using namespace platform;

namespace
{

thread_local DWORD gLastError = ERROR_SUCCESS;

} // namespace

DWORD GetLastError()
{
    return gLastError;
}

void platform::SetLastError(DWORD code)
{
    gLastError = code;
}

DWORD platform::ErrorFromErrno(int code)
{
    switch (code)
    {
    case 0:
        return ERROR_SUCCESS;
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
    case ELOOP:
        return ERROR_PATH_NOT_FOUND;
    case EMFILE:
    case ENFILE:
        return ERROR_TOO_MANY_OPEN_FILES;
    case EACCES:
    case EPERM:
    case EISDIR:
        return ERROR_ACCESS_DENIED;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case ENOMEM:
    case EAGAIN:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EROFS:
        return ERROR_WRITE_PROTECT;
    case ETXTBSY:
        return ERROR_SHARING_VIOLATION;
    case EEXIST:
        return ERROR_ALREADY_EXISTS;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    case ENOSPC:
    case EDQUOT:
        return ERROR_DISK_FULL;
    case EBUSY:
        return ERROR_BUSY;
    case ENOEXEC:
        return ERROR_BAD_EXE_FORMAT;
    case ENAMETOOLONG:
    case E2BIG:
        return ERROR_FILENAME_EXCED_RANGE;
    case EIO:
        return ERROR_IO_DEVICE;
    case ENOSYS:
    case EOPNOTSUPP:
        return ERROR_NOT_SUPPORTED;
    default:
        return ERROR_GEN_FAILURE;
    }
}

BOOL platform::FailWith(DWORD code)
{
    SetLastError(code);
    return FALSE;
}

BOOL platform::FailWithErrno(int code)
{
    return FailWith(ErrorFromErrno(code));
}
