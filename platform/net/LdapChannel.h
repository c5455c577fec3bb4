// SPDX-License-Identifier: MIT
// The lowest layer of a session's buffer: a socket, with TLS on it or not. It remembers why it ended, which
// OpenLDAP's library does not tell.
#pragma once

#include "base/Owned.h"
#include "platform/net/LdapHost.h"
#include "platform/net/LdapLayer.h"

#include <string>

#include <openssl/ssl.h>

namespace platform
{

class LdapChannel : public LdapLayer
{
public:
    // Owns the socket, which does not block.
    explicit LdapChannel(int socket) : mSocket(socket) {}
    ~LdapChannel() override;

    void SetKeepAlive(bool on);

    // The handshake. The certificate must be good for `host` by the system's trust store.
    LdapFault StartTls(const std::string& host, Deadline deadline);

    void Attach(Sockbuf* buffer);

    // From then on nothing comes any more, whatever the server sends, and a write that waits for the server
    // fails.
    void SetDeadline(Deadline deadline) { mDeadline = deadline; }
    // Waits until more has come or the deadline has.
    void WaitForMore() const;

    // Why the channel ended; success while it stands.
    const LdapFault& Ending() const { return mEnding; }

protected:
    ber_slen_t Read(char* bytes, std::size_t length) override;
    ber_slen_t Write(const char* bytes, std::size_t length) override;

private:
    // What to wait for (POLLIN, POLLOUT) before a call that gave `result` is made again; 0 when it failed.
    short Awaited(ber_slen_t result, short withoutTls) const;
    // Keeps the reason of a call that failed, unless there is an earlier one.
    void End(ber_slen_t result);

    int mSocket;
    Owned<SSL, SSL_free> mTls;
    Deadline mDeadline{};
    LdapFault mEnding;
};

} // namespace platform
