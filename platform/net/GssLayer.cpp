// SPDX-License-Identifier: MIT
#include "platform/net/GssLayer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>

#include <arpa/inet.h>

namespace platform
{

namespace
{

// In bytes.
constexpr std::size_t kLongestToken = 16U << 20U; // taken from a server
constexpr std::size_t kLongestPlain = 65'536;     // wrapped in one token
constexpr std::size_t kCountSize = 4;

// `bytes` has at least kCountSize of them.
std::size_t CountAt(std::string_view bytes)
{
    std::uint32_t count = 0;
    bytes.copy(reinterpret_cast<char*>(&count), kCountSize);
    return ntohl(count);
}

std::string Counted(std::string_view bytes)
{
    const std::uint32_t count = htonl(static_cast<std::uint32_t>(bytes.size()));
    return std::string(reinterpret_cast<const char*>(&count), kCountSize).append(bytes);
}

ber_slen_t Fail()
{
    errno = EPROTO;
    return -1;
}

} // namespace

bool GssLayer::HasToken() const
{
    return mIncoming.size() >= kCountSize && mIncoming.size() - kCountSize >= CountAt(mIncoming);
}

ber_slen_t GssLayer::Read(char* bytes, std::size_t length)
try
{
    while (mPlainAt == mPlain.size())
    {
        if (HasToken())
        {
            mPlainAt = 0;
            const std::size_t size = CountAt(mIncoming);
            if (!mContext->Unwrap(std::string_view(mIncoming).substr(kCountSize, size), mPlain))
                return Fail();
            mIncoming.erase(0, kCountSize + size);
            continue;
        }
        std::array<char, 16'384> raw;
        const ber_slen_t got = ReadBelow(raw.data(), raw.size());
        if (got <= 0)
            return got;
        mIncoming.append(raw.data(), static_cast<std::size_t>(got));
        if (mIncoming.size() >= kCountSize && CountAt(mIncoming) > kLongestToken)
            return Fail();
    }
    const std::size_t count = std::min(length, mPlain.size() - mPlainAt);
    mPlain.copy(bytes, count, mPlainAt);
    mPlainAt += count;
    return static_cast<ber_slen_t>(count);
}
catch (const std::bad_alloc&) // the library above knows no exceptions
{
    return Fail();
}

ber_slen_t GssLayer::Write(const char* bytes, std::size_t length)
try
{
    const std::string_view plain(bytes, std::min(length, kLongestPlain));
    std::string token;
    if (!mContext->Wrap(plain, token))
        return Fail();
    const std::string counted = Counted(token);
    for (std::size_t at = 0; at < counted.size();)
    {
        const ber_slen_t put = WriteBelow(counted.data() + at, counted.size() - at);
        if (put <= 0)
            return put;
        at += static_cast<std::size_t>(put);
    }
    return static_cast<ber_slen_t>(plain.size());
}
catch (const std::bad_alloc&)
{
    return Fail();
}

} // namespace platform
