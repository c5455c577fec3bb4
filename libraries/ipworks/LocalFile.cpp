// SPDX-License-Identifier: MIT
#include "libraries/ipworks/LocalFile.h"

#include <algorithm>

bool LocalFile::Open(const std::wstring& path, std::string& problem)
{
    mFile = OpenOwn(path, mSize, problem);
    if (mFile == nullptr)
        return false;
    // The transfer brings a large buffer of its own.
    std::setvbuf(mFile.get(), nullptr, _IONBF, 0);
    return true;
}

std::int64_t LocalFile::Read(char* buffer, std::int64_t capacity)
{
    const std::int64_t wanted = std::min(capacity, mSize - mRead);
    const auto count =
        static_cast<std::int64_t>(std::fread(buffer, 1, static_cast<std::size_t>(wanted), mFile.get()));
    if (count < wanted && std::ferror(mFile.get()) != 0)
        return -1;
    mRead += count;
    if (count < wanted)
        mSize = mRead;
    return count;
}
