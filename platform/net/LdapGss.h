// SPDX-License-Identifier: MIT
// Log-on by GSSAPI as directory servers of the Windows kind expect it: Kerberos or NTLM, inside SPNEGO or
// bare, and the signing and sealing of what follows. The target's name is taken as it was typed: no look-up
// has a say in it.
#pragma once

#include "platform/net/GssFrames.h"
#include "platform/net/LdapSession.h"

#include <functional>
#include <memory>
#include <string>

#include <gssapi/gssapi.h>
#include <lber.h>

struct FreeGssCredential
{
    using pointer = gss_cred_id_t;
    void operator()(gss_cred_id_t credential) const
    {
        OM_uint32 minor = 0;
        gss_release_cred(&minor, &credential);
    }
};
using GssCredential = std::unique_ptr<gss_cred_id_t, FreeGssCredential>;

// One exchange of tokens.
class GssContext
{
public:
    // NTLM for the identity; `bare` is without SPNEGO around it. `fault` when it cannot be had here.
    static std::unique_ptr<GssContext> Ntlm(const LdapIdentity& identity, const std::string& host, bool bare,
                                            Deadline deadline, LdapFault& fault);
    // Kerberos inside SPNEGO. Asks the realm's servers for a ticket for the host; null with their answer in
    // `fault` when there is none.
    static std::unique_ptr<GssContext> Kerberos(const LdapIdentity& identity, const std::string& realm,
                                                const std::string& host, Deadline deadline, LdapFault& fault);
    ~GssContext();
    GssContext(const GssContext&) = delete;
    GssContext& operator=(const GssContext&) = delete;

    // Takes the server's token (empty at first) and gives the next one for it.
    LdapFault Step(const std::string& token, std::string& reply);
    bool IsComplete() const { return mComplete; }
    // True when what follows must pass through Wrap and Unwrap.
    bool Protects() const { return (mWanted & mFlags & (GSS_C_INTEG_FLAG | GSS_C_CONF_FLAG)) != 0; }

    bool Wrap(std::string_view plain, std::string& token);
    bool Unwrap(std::string_view token, std::string& plain);

private:
    struct Making
    {
        std::unique_ptr<GssContext> context;
        LdapFault fault;
    };

    // What `make` makes, or null when that takes too long, since it asks servers.
    static std::unique_ptr<GssContext> MakeWithin(Deadline deadline, std::function<void(Making&)> make,
                                                  LdapFault& fault);
    // A new exchange with Kerberos whose ticket is at hand: a first token is made and dropped, which fetches
    // the ticket into the credential's own memory.
    static std::unique_ptr<GssContext> WithTicket(const std::string& user, const Secret& password,
                                                  const std::string& target, gss_OID mechanism,
                                                  LdapFault& fault);
    GssContext(GssCredential credential, gss_OID mechanism, gss_name_t target);

    GssCredential mCredential;
    gss_OID mMechanism;
    gss_name_t mTarget;
    gss_ctx_id_t mContext = GSS_C_NO_CONTEXT;
    OM_uint32 mWanted;    // nothing for bare NTLM, after which servers take plain messages
    OM_uint32 mFlags = 0; // agreed with the server
    bool mComplete = false;
};

// The layer of a session's buffer that protects all that passes after a bind.
class GssLayer
{
public:
    explicit GssLayer(std::unique_ptr<GssContext> context) : mContext(std::move(context)) {}

    // The buffer must not outlive the layer.
    void Attach(Sockbuf* buffer);

private:
    static GssLayer& Of(Sockbuf_IO_Desc* layer);
    static int Setup(Sockbuf_IO_Desc* layer, void* self);
    static int Control(Sockbuf_IO_Desc* layer, int option, void* argument);
    static ber_slen_t Read(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length);
    static ber_slen_t Write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length);

    std::unique_ptr<GssContext> mContext;
    GssFrames mIncoming;
    std::string mPlain; // unwrapped, from mPlainAt on not yet read
    std::size_t mPlainAt = 0;
    std::string mOutgoing;          // wrapped, not yet written
    std::size_t mOutgoingPlain = 0; // bytes of the caller's that mOutgoing stands for
};
