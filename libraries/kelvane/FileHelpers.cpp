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

bool WriteTextFileAsUTF8(const wchar_t* path, const ZTString& text, bool overwrite, bool share, bool append,
                         bool mark)
{
    using kelvane::WriteMode;
    const WriteMode mode = append      ? WriteMode::Append
                           : overwrite ? WriteMode::Replace
                                       : WriteMode::CreateOnly;
    const bool marked = mark && !(append && ZTGetFileSize(path) != 0);
    const std::string bytes = (marked ? "\xEF\xBB\xBF" : "") + kelvane::Narrow(text.AsView());
    return kelvane::WriteFileText(kelvane::NativePath(kelvane::ViewOf(path)), bytes, mode, share);
}

bool IsFileOrDirLink(const WIN32_FIND_DATAW& findData)
{
    // Other reparse points, files kept in a cloud for instance, hold data of their own.
    return (findData.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (findData.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
            findData.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}
