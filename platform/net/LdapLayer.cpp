// SPDX-License-Identifier: MIT
#include "platform/net/LdapLayer.h"

namespace platform
{

namespace
{

LdapLayer* LayerAt(Sockbuf_IO_Desc* place)
{
    return static_cast<LdapLayer*>(place->sbiod_pvt);
}

} // namespace

void LdapLayer::Attach(Sockbuf* buffer, int level)
{
    static Sockbuf_IO io = {Setup, nullptr, Control, ReadAt, WriteAt, nullptr};
    ber_sockbuf_add_io(buffer, &io, level, this);
}

int LdapLayer::Setup(Sockbuf_IO_Desc* place, void* layer)
{
    place->sbiod_pvt = layer;
    LayerAt(place)->mPlace = place;
    return 0;
}

int LdapLayer::Control(Sockbuf_IO_Desc* place, int option, void* argument)
{
    if (option == LBER_SB_OPT_DATA_READY && LayerAt(place)->HasReady())
        return 1;
    return LBER_SBIOD_CTRL_NEXT(place, option, argument);
}

ber_slen_t LdapLayer::ReadAt(Sockbuf_IO_Desc* place, void* bytes, ber_len_t length)
{
    return LayerAt(place)->Read(static_cast<char*>(bytes), length);
}

ber_slen_t LdapLayer::WriteAt(Sockbuf_IO_Desc* place, void* bytes, ber_len_t length)
{
    return LayerAt(place)->Write(static_cast<const char*>(bytes), length);
}

ber_slen_t LdapLayer::ReadBelow(char* bytes, std::size_t length)
{
    return LBER_SBIOD_READ_NEXT(mPlace, bytes, length);
}

ber_slen_t LdapLayer::WriteBelow(const char* bytes, std::size_t length)
{
    return LBER_SBIOD_WRITE_NEXT(mPlace, const_cast<char*>(bytes), length);
}

} // namespace platform
