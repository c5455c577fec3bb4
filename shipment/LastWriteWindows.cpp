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
    GetFileTime(file, nullptr, nullptr, &written);
    CloseHandle(file);
    return written;
}
