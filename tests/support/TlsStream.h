// SPDX-License-Identifier: MIT
// The server's side of TLS with a self-signed certificate made on the spot. Linux only.
#pragma once

#include "tests/support/TcpStream.h"

class TlsServer
{
public:
    // The certificate is for `host` and ends `days` from now, or ended before for a negative number.
    TlsServer(const std::string& host, int days);

    // The handshake; null when it fails.
    std::unique_ptr<Stream> Accept(std::unique_ptr<TcpStream> plain) const;

    // DER.
    std::string Certificate() const;

private:
    std::shared_ptr<struct ssl_ctx_st> mContext;
};

// What a server does that offers TLS and knows none: no handshake comes of it, so it gives null.
std::unique_ptr<Stream> NoHandshake(std::unique_ptr<TcpStream> plain);
