// SPDX-License-Identifier: MIT
#include "platform/net/GssFrames.h"

#include <cstdint>

namespace
{

constexpr std::uint32_t kLongestToken = 16 * 1024 * 1024; // taken from a server, in bytes
constexpr std::size_t kLengthSize = 4;

std::uint32_t LengthAt(std::string_view bytes)
{
    std::uint32_t length = 0;
    for (std::size_t i = 0; i < kLengthSize; ++i)
        length = length << 8 | static_cast<unsigned char>(bytes[i]);
    return length;
}

} // namespace

bool GssFrames::Append(std::string_view bytes)
{
    mBytes += bytes;
    return mBytes.size() < kLengthSize || LengthAt(mBytes) <= kLongestToken;
}

bool GssFrames::HasNext() const
{
    return mBytes.size() >= kLengthSize && mBytes.size() - kLengthSize >= LengthAt(mBytes);
}

bool GssFrames::Next(std::string& token)
{
    if (!HasNext())
        return false;
    const std::size_t length = LengthAt(mBytes);
    token.assign(mBytes, kLengthSize, length);
    mBytes.erase(0, kLengthSize + length);
    return true;
}

std::string GssFrames::Frame(std::string_view token)
{
    std::string framed;
    for (int shift = 24; shift >= 0; shift -= 8)
        framed += static_cast<char>(token.size() >> shift & 0xff);
    return framed.append(token);
}
