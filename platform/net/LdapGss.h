// SPDX-License-Identifier: MIT
// Log-on by GSSAPI as directory servers of the Windows kind expect it: Kerberos inside SPNEGO or
// NTLM, and the signing and sealing of what follows. The target's name is taken as it was typed: no look-up
// has a say in it.
#pragma once

#include "base/Owned.h"
#include "platform/net/LdapSession.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gssapi/gssapi.h>

namespace platform
{

inline void ReleaseCredential(gss_cred_id_t credential)
{
    OM_uint32 minor = 0;
    gss_release_cred(&minor, &credential);
}
using GssCredential = Owned<gss_cred_id_struct, ReleaseCredential>;

inline void ReleaseName(gss_name_t name)
{
    OM_uint32 minor = 0;
    gss_release_name(&minor, &name);
}
using GssName = Owned<gss_name_struct, ReleaseName>;

// Who is to get a ticket, as Kerberos names users.
struct KerberosUser
{
    std::string
        name; // "user@REALM", or "user@suffix@REALM" where the realm's servers know what suffix that is
    bool isEnterprise = false; // the second form

    bool operator==(const KerberosUser&) const = default;
};

// The users that an identity may stand for, in the order in which they are tried. `serverRealm` is the realm
// that the server at `host` says it belongs to, or empty. `fault` tells why this machine's set-up, which had
// to be asked, cannot be read; else it is left alone.
std::vector<KerberosUser> KerberosUsersOf(const LdapIdentity& identity, const std::string& host,
                                          const std::string& serverRealm, std::string& fault);

// One exchange of tokens.
class GssContext
{
public:
    // NTLM for the identity, without SPNEGO around it: a credential for that would make Kerberos ask its
    // servers. This asks none. `protects`: what follows is to be signed and sealed. Null with `fault` when
    // NTLM cannot be had here.
    static std::unique_ptr<GssContext> Ntlm(const LdapIdentity& identity, const std::string& host,
                                            bool protects, LdapFault& fault);
    // Kerberos inside SPNEGO. Asks the realm's servers for a ticket for the host; null with their answer in
    // `fault` when there is none.
    static std::unique_ptr<GssContext> Kerberos(const KerberosUser& user, const Secret& password,
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
    // A new exchange with Kerberos whose ticket is at hand: a first token is made and dropped, which fetches
    // the ticket into the credential's own memory.
    static std::unique_ptr<GssContext> WithTicket(const KerberosUser& user, const Secret& password,
                                                  const std::string& target, gss_OID mechanism,
                                                  LdapFault& fault);
    GssContext(GssCredential credential, gss_OID mechanism, GssName target, OM_uint32 wanted);

    GssCredential mCredential;
    gss_OID mMechanism;
    GssName mTarget;
    gss_ctx_id_t mContext = GSS_C_NO_CONTEXT;
    OM_uint32 mWanted;
    OM_uint32 mFlags = 0; // agreed with the server
    bool mComplete = false;
};

} // namespace platform
