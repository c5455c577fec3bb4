// SPDX-License-Identifier: MIT
// The layer of a session's buffer that protects all that passes after a log-on by GSSAPI: tokens, each after
// its length in four bytes (RFC 4422, 3.7).
#pragma once

#include "platform/net/LdapGss.h"
#include "platform/net/LdapLayer.h"

#include <memory>
#include <string>

namespace platform
{

class GssLayer : public LdapLayer
{
public:
    explicit GssLayer(std::unique_ptr<GssContext> context) : mContext(std::move(context)) {}

    void Attach(Sockbuf* buffer) { LdapLayer::Attach(buffer, LBER_SBIOD_LEVEL_APPLICATION); }

protected:
    ber_slen_t Read(char* bytes, std::size_t length) override;
    ber_slen_t Write(const char* bytes, std::size_t length) override;

private:
    bool HasToken() const;

    std::unique_ptr<GssContext> mContext;
    std::string mIncoming; // tokens, the last one perhaps not whole
    std::string mPlain;    // unwrapped, from mPlainAt on not yet read
    std::size_t mPlainAt = 0;
};

} // namespace platform
