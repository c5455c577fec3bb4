// SPDX-License-Identifier: MIT
#include "shipment/LastWrite.h"

FILETIME LastWrite(const ZTString& path, const WIN32_FIND_DATAW& record)
{
    FILETIME written = record.ftLastWriteTime;
    const HANDLE file =
        CreateFileW(path, FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return written;
    BY_HANDLE_FILE_INFORMATION about{};
    const BOOL known = GetFileInformationByHandle(file, &about);
    CloseHandle(file);
    // The file's own time may wait for its writer to close it, too. Its size does not.
    if (known && (about.nFileSizeHigh != record.nFileSizeHigh || about.nFileSizeLow != record.nFileSizeLow))
        GetSystemTimeAsFileTime(&written);
    else if (known)
        written = about.ftLastWriteTime;
    return written;
}
