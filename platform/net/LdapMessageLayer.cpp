// SPDX-License-Identifier: MIT
#include "platform/net/LdapMessageLayer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace
{

// Above the library's own layers, of which the log-on's protection is the highest.
constexpr int kLevel = LBER_SBIOD_LEVEL_APPLICATION + 1;
constexpr std::size_t kReadAhead = 16'384; // bytes

} // namespace

void LdapMessageLayer::Attach(Sockbuf* buffer)
{
    static Sockbuf_IO io = {Setup, nullptr, Control, Read, Write, nullptr};
    ber_sockbuf_add_io(buffer, &io, kLevel, this);
}

LdapMessageLayer& LdapMessageLayer::Of(Sockbuf_IO_Desc* layer)
{
    return *static_cast<LdapMessageLayer*>(layer->sbiod_pvt);
}

int LdapMessageLayer::Setup(Sockbuf_IO_Desc* layer, void* self)
{
    layer->sbiod_pvt = self;
    return 0;
}

int LdapMessageLayer::Control(Sockbuf_IO_Desc* layer, int option, void* argument)
{
    const LdapMessages& messages = Of(layer).mMessages;
    if (option == LBER_SB_OPT_DATA_READY && (!messages.Ready().empty() || messages.Ending()))
        return 1;
    return LBER_SBIOD_CTRL_NEXT(layer, option, argument);
}

ber_slen_t LdapMessageLayer::Read(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length)
{
    LdapMessages& messages = Of(layer).mMessages;
    while (messages.Ready().empty())
    {
        if (messages.Ending())
        {
            errno = EPROTO;
            return -1;
        }
        std::array<char, kReadAhead> raw;
        const ber_slen_t got = LBER_SBIOD_READ_NEXT(layer, raw.data(), raw.size());
        if (got <= 0)
            return got;
        messages.Append({raw.data(), static_cast<std::size_t>(got)});
    }
    const std::string_view ready = messages.Ready();
    const std::size_t count = std::min<std::size_t>(length, ready.size());
    std::memcpy(bytes, ready.data(), count);
    messages.Drop(count);
    return static_cast<ber_slen_t>(count);
}

ber_slen_t LdapMessageLayer::Write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length)
{
    return LBER_SBIOD_WRITE_NEXT(layer, bytes, length);
}
