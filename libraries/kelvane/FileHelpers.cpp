// SPDX-License-Identifier: MIT
#include "foundation/Kelvane.h"
#include "libraries/kelvane/Files.h"
#include "libraries/kelvane/Text.h"

std::uint64_t ZTGetFileSize(const wchar_t* path)
{
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(kelvane::NativePath(kelvane::ViewOf(path)), error);
    return error ? 0 : size;
}

bool WriteTextFileAsUTF8(const wchar_t* path, const ZTString& text, bool, bool, bool, bool)
{
    return kelvane::WritePrivateFile(kelvane::NativePath(kelvane::ViewOf(path)),
                                     kelvane::Narrow(text.AsView()));
}

bool IsFileOrDirLink(const WIN32_FIND_DATAW& findData)
{
    // Other reparse points, files kept in a cloud for instance, hold data of their own.
    return (findData.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (findData.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
            findData.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}
