// SPDX-License-Identifier: MIT
#include "platform/resource/ResFile.h"

#include "text/Unicode.h"

#include <algorithm>

namespace platform
{

namespace
{

constexpr WORD kNumberFollows = 0xFFFF;
constexpr std::size_t kSmallestHeader = 32; // bytes

} // namespace

Bytes ByteReader::ReadBytes(std::size_t count)
{
    if (count > Left())
    {
        mFailed = true;
        mOffset = mBytes.size();
        return {};
    }
    const Bytes read = mBytes.subspan(mOffset, count);
    mOffset += count;
    return read;
}

BYTE ByteReader::ReadByte()
{
    const Bytes read = ReadBytes(1);
    return read.empty() ? BYTE{0} : read[0];
}

WORD ByteReader::ReadWord()
{
    const Bytes read = ReadBytes(2);
    return read.empty() ? WORD{0} : static_cast<WORD>(read[0] | read[1] << 8);
}

DWORD ByteReader::ReadDWord()
{
    const DWORD low = ReadWord();
    return low | static_cast<DWORD>(ReadWord()) << 16;
}

std::wstring ByteReader::ReadText()
{
    std::u16string units;
    while (const WORD unit = ReadWord())
        units += static_cast<char16_t>(unit);
    return text::FromUtf16(units);
}

std::wstring ByteReader::ReadText(std::size_t codeUnits)
{
    std::u16string units;
    for (; codeUnits > 0 && !mFailed; --codeUnits)
        units += static_cast<char16_t>(ReadWord());
    return text::FromUtf16(units);
}

void ByteReader::AlignTo4()
{
    mOffset = std::min((mOffset + 3) & ~std::size_t{3}, mBytes.size());
}

ResourceName ResourceName::Read(ByteReader& reader)
{
    ByteReader ahead = reader;
    ResourceName name;
    if (ahead.ReadWord() == kNumberFollows)
    {
        name.number = ahead.ReadWord();
        reader = ahead;
        return name;
    }
    name.isNumber = false;
    name.text = reader.ReadText();
    return name;
}

std::vector<Resource> ReadResFile(Bytes file)
{
    std::vector<Resource> resources;
    ByteReader reader(file);
    while (reader.Left() >= kSmallestHeader)
    {
        const std::size_t dataSize = reader.ReadDWord();
        const std::size_t headerSize = reader.ReadDWord();
        if (headerSize < kSmallestHeader)
            break;
        ByteReader header(reader.ReadBytes(headerSize - 2 * sizeof(DWORD)));
        Resource resource;
        resource.type = ResourceName::Read(header);
        resource.name = ResourceName::Read(header);
        reader.AlignTo4();
        resource.data = reader.ReadBytes(dataSize);
        if (reader.Failed() || header.Failed())
            break;
        reader.AlignTo4();
        resources.push_back(std::move(resource));
    }
    return resources;
}

} // namespace platform
