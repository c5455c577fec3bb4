// SPDX-License-Identifier: MIT
#include "platform/net/Ber.h"

namespace
{

constexpr std::size_t kLengthBytes = 4; // the most that a length has behind its first byte

}

BerReading ReadBerHead(std::string_view bytes, std::size_t& at, std::size_t& length)
{
    if (bytes.size() < at + 2)
        return BerReading::Incomplete;
    length = static_cast<unsigned char>(bytes[at + 1]);
    at += 2;
    if (length < 0x80)
        return BerReading::Done;
    const std::size_t count = length & 0x7f;
    if (count == 0 || count > kLengthBytes)
        return BerReading::Wrong;
    if (bytes.size() < at + count)
        return BerReading::Incomplete;
    length = 0;
    for (std::size_t i = 0; i < count; ++i)
        length = length << 8 | static_cast<unsigned char>(bytes[at++]);
    return BerReading::Done;
}

std::optional<std::string_view> TakeBerElement(std::string_view& bytes)
{
    std::size_t at = 0;
    std::size_t length = 0;
    if (ReadBerHead(bytes, at, length) != BerReading::Done || length > bytes.size() - at)
        return std::nullopt;
    const std::string_view content = bytes.substr(at, length);
    bytes.remove_prefix(at + length);
    return content;
}
