// SPDX-License-Identifier: MIT
// The file that is sent. It lies where others may write: only a plain file that belongs to this account and
// has no second name is opened, never what a link leads to. Its size is fixed when it is opened: what is
// added later is not sent, so that a file which grows faster than the connection comes to an end.
#pragma once

#include "base/Owned.h"

#include <cstdint>
#include <cstdio>
#include <string>

class LocalFile
{
public:
    // False when there is no such file of our own or it cannot be read; `problem` then says why.
    bool Open(const std::wstring& path, std::string& problem);

    // Bytes to be sent: the size at the opening, or less once the file has turned out to end before.
    std::int64_t Size() const { return mSize; }

    // Bytes read, 0 at the end, -1 when the system cannot read on.
    std::int64_t Read(char* buffer, std::int64_t capacity);

private:
    using File = Owned<std::FILE, std::fclose>;
    // Each system's own part: opens the file and takes its size.
    static File OpenOwn(const std::wstring& path, std::int64_t& size, std::string& problem);

    File mFile;
    std::int64_t mSize = 0;
    std::int64_t mRead = 0;
};
