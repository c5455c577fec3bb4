// SPDX-License-Identifier: MIT
// The file that is sent. Its size is fixed when it is opened: what is added later is not sent, so that a
// file which grows faster than the connection comes to an end.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>

class LocalFile
{
public:
    // False when there is no such file or it cannot be read; `problem` then holds the system's text.
    bool Open(const std::wstring& path, std::string& problem);

    // Bytes to be sent: the size at the opening, or less once the file has turned out to end before.
    std::int64_t Size() const { return mSize; }

    // Bytes read, 0 at the end, -1 when the system cannot read on.
    std::int64_t Read(char* buffer, std::int64_t capacity);

private:
    std::ifstream mStream;
    std::int64_t mSize = 0;
    std::int64_t mRead = 0;
};
