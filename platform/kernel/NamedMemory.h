// SPDX-License-Identifier: MIT
// A small block of memory shared by all processes that open it by one name. It begins with given content
// when nobody holds it, and it is gone with its last holder, killed or not: each holder has a lock that the
// kernel lets go with the process. The file below /dev/shm is only where the block lies; one that a killed
// process left behind is held by nobody and begins anew.
#pragma once

#include "windef.h"

#include <memory>
#include <string>

class NamedMemory
{
public:
    // Who may open a name that this call brings into being.
    enum class Access
    {
        Owner,
        Everybody
    };

    // Null with a last error set when it cannot be had. `existed` tells whether another holder had it
    // before; the block then keeps its content. Blocks of one name have one size (ERROR_INVALID_HANDLE).
    static std::unique_ptr<NamedMemory> Open(const std::wstring& name, Access access, const void* content,
                                             std::size_t size, bool& existed);
    ~NamedMemory();
    NamedMemory(const NamedMemory&) = delete;
    NamedMemory& operator=(const NamedMemory&) = delete;

    void* Data() { return mData; }

private:
    NamedMemory(int file, std::string path, void* data, std::size_t size);

    int mFile;
    std::string mPath;
    void* mData;
    std::size_t mSize;
};
