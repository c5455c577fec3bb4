// SPDX-License-Identifier: MIT
// Windows' own English texts of error codes, and the memory that FormatMessageW hands out.
#include "platform/kernel/Error.h"
#include "platform/kernel/Text.h"
#include "winbase.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace
{

struct SystemMessage
{
    DWORD mCode;
    const wchar_t* mText;
};

// In order of the codes: what the layer sets, and what the network and the directory service report.
constexpr SystemMessage kMessages[] = {
    {ERROR_SUCCESS, L"The operation completed successfully."},
    {1, L"Incorrect function."},
    {ERROR_FILE_NOT_FOUND, L"The system cannot find the file specified."},
    {ERROR_PATH_NOT_FOUND, L"The system cannot find the path specified."},
    {ERROR_TOO_MANY_OPEN_FILES, L"The system cannot open the file."},
    {ERROR_ACCESS_DENIED, L"Access is denied."},
    {ERROR_INVALID_HANDLE, L"The handle is invalid."},
    {ERROR_NOT_ENOUGH_MEMORY, L"Not enough memory resources are available to process this command."},
    {13, L"The data is invalid."},
    {14, L"Not enough memory resources are available to complete this operation."},
    {15, L"The system cannot find the drive specified."},
    {ERROR_NO_MORE_FILES, L"There are no more files."},
    {ERROR_WRITE_PROTECT, L"The media is write protected."},
    {21, L"The device is not ready."},
    {ERROR_GEN_FAILURE, L"A device attached to the system is not functioning."},
    {ERROR_SHARING_VIOLATION,
     L"The process cannot access the file because it is being used by another process."},
    {33, L"The process cannot access the file because another process has locked a portion of the file."},
    {38, L"Reached the end of the file."},
    {ERROR_NOT_SUPPORTED, L"The request is not supported."},
    {53, L"The network path was not found."},
    {64, L"The specified network name is no longer available."},
    {65, L"Network access is denied."},
    {67, L"The network name cannot be found."},
    {80, L"The file exists."},
    {ERROR_INVALID_PARAMETER, L"The parameter is incorrect."},
    {109, L"The pipe has been ended."},
    {ERROR_BUFFER_OVERFLOW, L"The file name is too long."},
    {ERROR_DISK_FULL, L"There is not enough space on the disk."},
    {121, L"The semaphore timeout period has expired."},
    {ERROR_INSUFFICIENT_BUFFER, L"The data area passed to a system call is too small."},
    {123, L"The filename, directory name, or volume label syntax is incorrect."},
    {127, L"The specified procedure could not be found."},
    {145, L"The directory is not empty."},
    {ERROR_BUSY, L"The requested resource is in use."},
    {ERROR_ALREADY_EXISTS, L"Cannot create a file when that file already exists."},
    {ERROR_BAD_EXE_FORMAT, L"%1 is not a valid Win32 application."},
    {ERROR_FILENAME_EXCED_RANGE, L"The filename or extension is too long."},
    {ERROR_MORE_DATA, L"More data is available."},
    {258, L"The wait operation timed out."},
    {259, L"No more data is available."},
    {ERROR_DIRECTORY, L"The directory name is invalid."},
    {ERROR_MR_MID_NOT_FOUND,
     L"The system cannot find message text for message number 0x%1 in the message file for %2."},
    {487, L"Attempt to access invalid address."},
    {740, L"The requested operation requires elevation."},
    {995, L"The I/O operation has been aborted because of either a thread exit or an application request."},
    {ERROR_INVALID_FLAGS, L"Invalid flags."},
    {ERROR_NO_TOKEN, L"An attempt was made to reference a token that does not exist."},
    {ERROR_NO_UNICODE_TRANSLATION,
     L"No mapping for the Unicode character exists in the target multi-byte code page."},
    {ERROR_IO_DEVICE, L"The request could not be performed because of an I/O device error."},
    {1168, L"Element not found."},
    {1223, L"The operation was canceled by the user."},
    {1225, L"The remote computer refused the network connection."},
    {1228, L"An address has not yet been associated with the network endpoint."},
    {1231,
     L"The network location cannot be reached. For information about network troubleshooting, see Windows "
     L"Help."},
    {1232,
     L"The network location cannot be reached. For information about network troubleshooting, see Windows "
     L"Help."},
    {1236, L"The network connection was aborted by the local system."},
    {ERROR_NO_IMPERSONATION_TOKEN,
     L"An attempt has been made to operate on an impersonation token by a thread that is not currently "
     L"impersonating a client."},
    {1314, L"A required privilege is not held by the client."},
    {1326, L"The user name or password is incorrect."},
    {ERROR_NONE_MAPPED, L"No mapping between account names and security IDs was done."},
    {ERROR_INVALID_ACL, L"The access control list (ACL) structure is invalid."},
    {ERROR_INVALID_SID, L"The security ID structure is invalid."},
    {ERROR_INVALID_SECURITY_DESCR, L"The security descriptor structure is invalid."},
    {ERROR_ALLOTTED_SPACE_EXCEEDED, L"No more memory is available for security information updates."},
    {1355, L"The specified domain either does not exist or could not be contacted."},
    {ERROR_GENERIC_NOT_MAPPED,
     L"Generic access types were contained in an access mask which should already be "
     L"mapped to nongeneric types."},
    {1400, L"Invalid window handle."},
    {1460, L"This operation returned because the timeout period expired."},
    {1722, L"The RPC server is unavailable."},
    {1813, L"The specified resource type cannot be found in the image file."},
    {1814, L"The specified resource name cannot be found in the image file."},
    {10013, L"An attempt was made to access a socket in a way forbidden by its access permissions."},
    {10048, L"Only one usage of each socket address (protocol/network address/port) is normally permitted."},
    {10049, L"The requested address is not valid in its context."},
    {10050, L"A socket operation encountered a dead network."},
    {10051, L"A socket operation was attempted to an unreachable network."},
    {10052,
     L"The connection has been broken due to keep-alive activity detecting a failure while the operation was "
     L"in progress."},
    {10053, L"An established connection was aborted by the software in your host machine."},
    {10054, L"An existing connection was forcibly closed by the remote host."},
    {10060,
     L"A connection attempt failed because the connected party did not properly respond after a period of "
     L"time, or established connection failed because connected host has failed to respond."},
    {10061, L"No connection could be made because the target machine actively refused it."},
    {10064, L"A socket operation failed because the destination host was down."},
    {10065, L"A socket operation was attempted to an unreachable host."},
    {11001, L"No such host is known."},
    {11002,
     L"This is usually a temporary error during hostname resolution and means that the local server did not "
     L"receive a response from an authoritative server."},
    {11003, L"A non-recoverable error occurred during a database lookup."},
    {11004, L"The requested name is valid, but no data of the requested type was found."},
};
static_assert(std::ranges::is_sorted(kMessages, {}, &SystemMessage::mCode));

const wchar_t* MessageOf(DWORD code)
{
    const auto* found = std::ranges::lower_bound(kMessages, code, {}, &SystemMessage::mCode);
    return found == std::end(kMessages) || found->mCode != code ? nullptr : found->mText;
}

} // namespace

HLOCAL LocalAlloc(UINT flags, SIZE_T bytes)
{
    void* memory = (flags & LMEM_ZEROINIT) != 0 ? calloc(1, bytes) : malloc(bytes);
    if (memory == nullptr)
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return memory;
}

HLOCAL LocalFree(HLOCAL memory)
{
    free(memory);
    return nullptr;
}

DWORD FormatMessageW(DWORD flags, LPCVOID, DWORD code, DWORD, LPWSTR buffer, DWORD size, void*)
{
    constexpr DWORD kNeeded = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    if (flags != kNeeded || buffer == nullptr)
    {
        FailWith(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const wchar_t* found = MessageOf(code);
    if (found == nullptr)
    {
        FailWith(ERROR_MR_MID_NOT_FOUND);
        return 0;
    }
    const std::wstring text = found + std::wstring(L"\r\n");
    if (!CopyOut(text, buffer, size))
    {
        FailWith(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    return static_cast<DWORD>(text.size());
}
