// SPDX-License-Identifier: MIT
// The server's side of TLS with a self-signed certificate made on the spot. Linux only.
#pragma once

#include "tests/support/TcpStream.h"

#include <memory>
#include <string>

class TlsServer
{
public:
    // The certificate is for `host` and ends `days` from now, or ended before for a negative number.
    TlsServer(const std::string& host, int days);
    ~TlsServer();

    // The handshake; null when it fails.
    std::unique_ptr<Stream> Accept(std::unique_ptr<TcpStream> plain) const;

    // DER.
    std::string Certificate() const;

private:
    struct Context;
    std::unique_ptr<Context> mContext;
};
