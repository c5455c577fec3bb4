// SPDX-License-Identifier: MIT
#include "libraries/ipworks/LocalFile.h"

#include "libraries/ipworks/NativePath.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

bool LocalFile::Open(const std::wstring& path, std::string& problem)
{
    const std::filesystem::path file = NativePath(path);
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored))
    {
        problem = std::generic_category().message(EISDIR);
        return false;
    }
    // The transfer brings a large buffer of its own.
    mStream.rdbuf()->pubsetbuf(nullptr, 0);
    errno = 0;
    mStream.open(file, std::ios::binary | std::ios::ate);
    if (!mStream)
    {
        problem = std::generic_category().message(errno);
        return false;
    }
    mSize = static_cast<std::int64_t>(mStream.tellg());
    mStream.seekg(0);
    return true;
}

std::int64_t LocalFile::Read(char* buffer, std::int64_t capacity)
{
    mStream.read(buffer, std::min(capacity, mSize - mRead));
    if (mStream.bad())
        return -1;
    const std::int64_t count = mStream.gcount();
    mRead += count;
    if (mStream.eof())
        mSize = mRead;
    return count;
}
