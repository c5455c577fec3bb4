// SPDX-License-Identifier: MIT
// Windows' own English texts of error codes, and the memory that FormatMessageW hands out.
#include "platform/kernel/Error.h"
#include "platform/kernel/Text.h"
#include "winbase.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

using namespace platform;

namespace
{

struct SystemMessage
{
    DWORD mCode;
    const wchar_t* mText;
};

// What the layer sets where the program asks for a text.
constexpr SystemMessage kMessages[] = {
    {ERROR_SUCCESS, L"The operation completed successfully."},
    {ERROR_FILE_NOT_FOUND, L"The system cannot find the file specified."},
    {ERROR_PATH_NOT_FOUND, L"The system cannot find the path specified."},
    {ERROR_TOO_MANY_OPEN_FILES, L"The system cannot open the file."},
    {ERROR_ACCESS_DENIED, L"Access is denied."},
    {ERROR_INVALID_HANDLE, L"The handle is invalid."},
    {ERROR_NOT_ENOUGH_MEMORY, L"Not enough memory resources are available to process this command."},
    {ERROR_WRITE_PROTECT, L"The media is write protected."},
    {ERROR_GEN_FAILURE, L"A device attached to the system is not functioning."},
    {ERROR_SHARING_VIOLATION,
     L"The process cannot access the file because it is being used by another process."},
    {ERROR_NOT_SUPPORTED, L"The request is not supported."},
    {ERROR_INVALID_PARAMETER, L"The parameter is incorrect."},
    {ERROR_DISK_FULL, L"There is not enough space on the disk."},
    {ERROR_BUSY, L"The requested resource is in use."},
    {ERROR_ALREADY_EXISTS, L"Cannot create a file when that file already exists."},
    {ERROR_BAD_EXE_FORMAT, L"%1 is not a valid Win32 application."},
    {ERROR_FILENAME_EXCED_RANGE, L"The filename or extension is too long."},
    {ERROR_DIRECTORY, L"The directory name is invalid."},
    {ERROR_IO_DEVICE, L"The request could not be performed because of an I/O device error."},
};

const wchar_t* MessageOf(DWORD code)
{
    const auto* found = std::ranges::find(kMessages, code, &SystemMessage::mCode);
    return found == std::end(kMessages) ? nullptr : found->mText;
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
