// SPDX-License-Identifier: MIT
// The bytes under an LDAP session: a socket, with TLS on it or not, in the form in which OpenLDAP's library
// takes a transport from its caller. It remembers why it ended, which that library does not tell.
#pragma once

#include "platform/net/LdapHost.h"

#include <memory>
#include <string>

#include <lber.h>
#include <openssl/ssl.h>

class LdapChannel
{
public:
    // Owns the socket, which does not block.
    explicit LdapChannel(int socket) : mSocket(socket) {}
    ~LdapChannel();
    LdapChannel(const LdapChannel&) = delete;
    LdapChannel& operator=(const LdapChannel&) = delete;

    void SetKeepAlive(bool on);

    // The handshake. The certificate must be good for `host` by the system's trust store.
    LdapFault StartTls(const std::string& host, Deadline deadline);

    // Puts the channel under a session's buffer, which must not outlive it.
    void Attach(Sockbuf* buffer);

    int Socket() const { return mSocket; }
    // Why the channel ended; success while it stands.
    const LdapFault& Ending() const { return mEnding; }

private:
    struct FreeSsl
    {
        void operator()(SSL* ssl) const { SSL_free(ssl); }
    };

    static LdapChannel& Of(Sockbuf_IO_Desc* layer);
    static int Setup(Sockbuf_IO_Desc* layer, void* channel);
    static int Control(Sockbuf_IO_Desc* layer, int option, void* argument);
    static ber_slen_t Read(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length);
    static ber_slen_t Write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length);

    ber_slen_t ReadPlain(void* bytes, std::size_t length);
    ber_slen_t WritePlain(const void* bytes, std::size_t length);
    // The result of an SSL_ call as read and write give it.
    ber_slen_t TlsResult(int result);

    int mSocket;
    std::unique_ptr<SSL, FreeSsl> mTls;
    LdapFault mEnding;
};
