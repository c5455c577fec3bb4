// SPDX-License-Identifier: MIT
// The uppermost layer of a session's buffer: what the library reads passes through LdapMessages.
#pragma once

#include "platform/net/LdapMessages.h"

#include <lber.h>

class LdapMessageLayer
{
public:
    // The buffer must not outlive the layer.
    void Attach(Sockbuf* buffer);

    // See LdapMessages.
    const LdapFault& Ending() const { return mMessages.Ending(); }

private:
    static LdapMessageLayer& Of(Sockbuf_IO_Desc* layer);
    static int Setup(Sockbuf_IO_Desc* layer, void* self);
    static int Control(Sockbuf_IO_Desc* layer, int option, void* argument);
    static ber_slen_t Read(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length);
    static ber_slen_t Write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length);

    LdapMessages mMessages;
};
