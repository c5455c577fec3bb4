// SPDX-License-Identifier: MIT
// A .res file: what a resource compiler makes of an .rc. The bytes are untrusted throughout; what does not
// fit is taken as absent.
#pragma once

#include <windows.h>

#include "platformExport.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace platform
{

using Bytes = std::span<const BYTE>;

// Reads little-endian values one after the other. Past the end everything is zero and Failed() is true.
class ByteReader
{
public:
    explicit ByteReader(Bytes bytes) : mBytes(bytes) {}

    BYTE ReadByte();
    WORD ReadWord();
    DWORD ReadDWord();
    Bytes ReadBytes(std::size_t count);
    std::wstring ReadText();                      // UTF-16 up to a NUL
    std::wstring ReadText(std::size_t codeUnits); // UTF-16
    void AlignTo4();

    bool Failed() const { return mFailed; }
    std::size_t Left() const { return mBytes.size() - mOffset; }

private:
    Bytes mBytes;
    std::size_t mOffset = 0;
    bool mFailed = false;
};

// A type or name: a number, or a text.
struct ResourceName
{
    bool isNumber = true;
    WORD number = 0;
    std::wstring text;

    static ResourceName Read(ByteReader& reader); // 0xFFFF and a number, or a NUL-terminated text
    bool Is(UINT wanted) const { return isNumber && number == wanted; }
};

struct Resource
{
    ResourceName type;
    ResourceName name;
    Bytes data;
};

// The resources of a file, as far as it can be read. They point into `file`.
PLATFORM_EXPORT std::vector<Resource> ReadResFile(Bytes file);

} // namespace platform
