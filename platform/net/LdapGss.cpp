// SPDX-License-Identifier: MIT
#include "platform/net/LdapGss.h"

#include "base/RunWithin.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <optional>

#include <gssapi/gssapi_ext.h>
#include <gssapi/gssapi_krb5.h>
#include <krb5.h>

namespace platform
{

namespace
{

constexpr OM_uint32 kProtected =
    GSS_C_MUTUAL_FLAG | GSS_C_REPLAY_FLAG | GSS_C_SEQUENCE_FLAG | GSS_C_INTEG_FLAG | GSS_C_CONF_FLAG;

gss_OID_desc kSpnego = {6, const_cast<char*>("\x2b\x06\x01\x05\x05\x02")};
gss_OID_desc kNtlm = {10, const_cast<char*>("\x2b\x06\x01\x04\x01\x82\x37\x02\x02\x0a")};
gss_OID_desc kKerberos = {9, const_cast<char*>("\x2a\x86\x48\x86\xf7\x12\x01\x02\x02")};

// A buffer that the library filled.
struct GssBuffer
{
    gss_buffer_desc data = GSS_C_EMPTY_BUFFER;

    GssBuffer() = default;
    GssBuffer(const GssBuffer&) = delete;
    GssBuffer& operator=(const GssBuffer&) = delete;
    ~GssBuffer()
    {
        OM_uint32 minor = 0;
        explicit_bzero(data.value, data.length);
        gss_release_buffer(&minor, &data);
    }
    std::string_view View() const { return {static_cast<const char*>(data.value), data.length}; }
};

gss_buffer_desc BufferOf(std::string_view text)
{
    return {text.size(), const_cast<char*>(text.data())};
}

// What the mechanism has to say, or the general text when it is silent.
std::string StatusText(OM_uint32 major, OM_uint32 minor, gss_OID mechanism)
{
    std::string text;
    for (const bool ofMechanism : {true, false})
    {
        OM_uint32 more = 0;
        OM_uint32 ignored = 0;
        GssBuffer part;
        if ((!ofMechanism || minor != 0) &&
            gss_display_status(&ignored, ofMechanism ? minor : major,
                               ofMechanism ? GSS_C_MECH_CODE : GSS_C_GSS_CODE, mechanism, &more,
                               &part.data) == GSS_S_COMPLETE)
            text = part.View();
        if (!text.empty())
            break;
    }
    return text;
}

LdapFault FaultOf(OM_uint32 major, OM_uint32 minor, gss_OID mechanism)
{
    const auto code = static_cast<krb5_error_code>(minor);
    const bool isWrongPassword = code == KRB5KDC_ERR_PREAUTH_FAILED || code == KRB5KRB_AP_ERR_BAD_INTEGRITY;
    return {isWrongPassword ? eLdapInvalidCredentials : eLdapLocalError, StatusText(major, minor, mechanism)};
}

GssName ImportName(const std::string& text, const gss_OID type)
{
    OM_uint32 minor = 0;
    gss_buffer_desc buffer = BufferOf(text);
    gss_name_t name = GSS_C_NO_NAME;
    gss_import_name(&minor, &buffer, type, &name);
    return GssName(name);
}

bool IsInstalled(const gss_OID_desc& mechanism)
{
    OM_uint32 minor = 0;
    gss_OID_set set = GSS_C_NO_OID_SET;
    int present = 0;
    if (gss_indicate_mechs(&minor, &set) == GSS_S_COMPLETE)
    {
        gss_test_oid_set_member(&minor, const_cast<gss_OID>(&mechanism), set, &present);
        gss_release_oid_set(&minor, &set);
    }
    return present != 0;
}

// A credential of `mechanism` from a name and a password; a SPNEGO one that will offer `inner` alone.
GssCredential AcquireCredential(const GssName& name, const Secret& password, gss_OID mechanism, gss_OID inner,
                                LdapFault& fault)
{
    OM_uint32 minor = 0;
    gss_buffer_desc secret = BufferOf(password.Text());
    gss_OID_set_desc wanted = {1, mechanism};
    gss_cred_id_t credential = GSS_C_NO_CREDENTIAL;
    OM_uint32 major = gss_acquire_cred_with_password(&minor, name.get(), &secret, GSS_C_INDEFINITE, &wanted,
                                                     GSS_C_INITIATE, &credential, nullptr, nullptr);
    GssCredential owner(credential);
    if (major == GSS_S_COMPLETE && inner != nullptr)
    {
        gss_OID_set_desc offered = {1, inner};
        major = gss_set_neg_mechs(&minor, credential, &offered);
    }
    if (major == GSS_S_COMPLETE)
        return owner;
    fault = FaultOf(major, minor, inner != nullptr ? inner : mechanism);
    return nullptr;
}

// A name of Kerberos in text form: what separates its components is escaped inside of them.
std::string Escaped(const std::string& component)
{
    std::string text;
    for (const char character : component)
    {
        if (character != '\0' && std::strchr("/@\\", character) != nullptr)
            text += '\\';
        text += character;
    }
    return text;
}

std::string Upper(std::string text)
{
    std::ranges::transform(text, text.begin(),
                           [](unsigned char character)
                           { return static_cast<char>(std::toupper(character)); });
    return text;
}

// The realms of this machine's set-up for a host: the one that is configured for it, and the default.
std::vector<std::string> ConfiguredRealms(const std::string& host, std::string& fault)
{
    krb5_context context = nullptr;
    if (const krb5_error_code error = krb5_init_context(&context))
    {
        const char* text = krb5_get_error_message(nullptr, error);
        fault = text;
        krb5_free_error_message(nullptr, text);
        return {};
    }
    std::vector<std::string> realms;
    char** mapped = nullptr;
    if (krb5_get_host_realm(context, host.c_str(), &mapped) == 0)
    {
        realms.emplace_back(mapped[0]);
        krb5_free_host_realm(context, mapped);
    }
    char* usual = nullptr;
    if (krb5_get_default_realm(context, &usual) == 0)
    {
        realms.emplace_back(usual);
        krb5_free_default_realm(context, usual);
    }
    krb5_free_context(context);
    return realms;
}

} // namespace

std::vector<KerberosUser> KerberosUsersOf(const LdapIdentity& identity, const std::string& host,
                                          const std::string& serverRealm, std::string& fault)
{
    const std::size_t at = identity.user.find('@');
    const std::string name = Escaped(identity.user.substr(0, at));
    std::vector<std::string> realms;
    std::vector<KerberosUser> users;
    if (identity.domain.find('.') != std::string::npos) // a name of DNS, as realms are
        realms = {Upper(identity.domain)};
    else if (identity.domain.empty() && at != std::string::npos)
    {
        const std::string suffix = identity.user.substr(at + 1);
        realms = {Upper(suffix)};
        if (!serverRealm.empty() && serverRealm != realms[0])
            users.push_back({name + "@" + Escaped(suffix) + "@" + serverRealm, true});
    }
    else
    {
        realms = ConfiguredRealms(host, fault);
        // A server knows best which users it takes, and a domain's short name says nothing to anybody else. A
        // ticket server that knows another user of the name would end the search with a wrong password.
        realms.insert(realms.begin(), serverRealm);
    }
    for (const std::string& realm : realms)
    {
        KerberosUser user = {std::string(name).append("@").append(realm)};
        if (!realm.empty() && std::ranges::find(users, user) == users.end())
            users.push_back(std::move(user));
    }
    return users;
}

GssContext::GssContext(GssCredential credential, gss_OID mechanism, GssName target, OM_uint32 wanted)
    : mCredential(std::move(credential)), mMechanism(mechanism), mTarget(std::move(target)), mWanted(wanted)
{
}

GssContext::~GssContext()
{
    OM_uint32 minor = 0;
    gss_delete_sec_context(&minor, &mContext, GSS_C_NO_BUFFER);
}

std::unique_ptr<GssContext> GssContext::Ntlm(const LdapIdentity& identity, const std::string& host,
                                             bool protects, LdapFault& fault)
{
    if (!IsInstalled(kNtlm))
    {
        fault = {eLdapAuthUnknown, "NTLM is not installed on this machine (package gss-ntlmssp)"};
        return nullptr;
    }
    const std::size_t at = identity.domain.empty() ? identity.user.find('@') : std::string::npos;
    const std::string domain = at != std::string::npos ? identity.user.substr(at + 1) : identity.domain;
    const std::string name = identity.user.substr(0, at);
    GssCredential credential =
        AcquireCredential(ImportName(domain.empty() ? name : domain + "\\" + name, GSS_C_NT_USER_NAME),
                          identity.password, &kNtlm, nullptr, fault);
    if (credential == nullptr)
        return nullptr;
    return std::unique_ptr<GssContext>(new GssContext(std::move(credential), &kNtlm,
                                                      ImportName("ldap@" + host, GSS_C_NT_HOSTBASED_SERVICE),
                                                      protects ? kProtected : 0));
}

std::unique_ptr<GssContext> GssContext::WithTicket(const KerberosUser& user, const Secret& password,
                                                   const std::string& target, gss_OID mechanism,
                                                   LdapFault& fault)
{
    GssCredential credential = AcquireCredential(
        ImportName(user.name, user.isEnterprise ? GSS_KRB5_NT_ENTERPRISE_NAME : GSS_C_NT_USER_NAME), password,
        mechanism, mechanism == &kSpnego ? &kKerberos : nullptr, fault);
    if (credential == nullptr)
        return nullptr;
    const auto make = [&]
    {
        GssName name = ImportName(target, const_cast<gss_OID>(GSS_KRB5_NT_PRINCIPAL_NAME));
        return std::unique_ptr<GssContext>(
            new GssContext(std::move(credential), mechanism, std::move(name), kProtected));
    };
    const std::unique_ptr<GssContext> first = make();
    std::string token;
    fault = first->Step({}, token);
    credential = std::move(first->mCredential);
    return fault ? nullptr : make();
}

std::unique_ptr<GssContext> GssContext::Kerberos(const KerberosUser& user, const Secret& password,
                                                 const std::string& host, Deadline deadline, LdapFault& fault)
{
    struct Outcome
    {
        std::unique_ptr<GssContext> context;
        LdapFault fault;
    };
    // The realm of the target is left open: the servers of the user's realm refer to the right one.
    std::optional<Outcome> outcome =
        RunWithin(deadline,
                  [user, password, target = "ldap/" + Escaped(host) + "@"]
                  {
                      Outcome made;
                      // SPNEGO does not tell why there is no ticket: Kerberos itself is asked first.
                      for (const gss_OID mechanism : {&kKerberos, &kSpnego})
                          if (!made.fault)
                              made.context = WithTicket(user, password, target, mechanism, made.fault);
                      return made;
                  });
    if (!outcome)
    {
        fault = {eLdapLocalError, "the ticket server gave no answer in time"};
        return nullptr;
    }
    fault = outcome->fault;
    return std::move(outcome->context);
}

LdapFault GssContext::Step(const std::string& token, std::string& reply)
{
    OM_uint32 minor = 0;
    gss_buffer_desc input = BufferOf(token);
    GssBuffer output;
    const OM_uint32 major =
        gss_init_sec_context(&minor, mCredential.get(), &mContext, mTarget.get(), mMechanism, mWanted, 0,
                             GSS_C_NO_CHANNEL_BINDINGS, &input, nullptr, &output.data, &mFlags, nullptr);
    reply = output.View();
    if (GSS_ERROR(major))
        return FaultOf(major, minor, mMechanism);
    mComplete = major == GSS_S_COMPLETE;
    return {};
}

bool GssContext::Wrap(std::string_view plain, std::string& token)
{
    OM_uint32 minor = 0;
    gss_buffer_desc input = BufferOf(plain);
    GssBuffer output;
    const int seal = (mFlags & GSS_C_CONF_FLAG) != 0 ? 1 : 0;
    if (gss_wrap(&minor, mContext, seal, GSS_C_QOP_DEFAULT, &input, nullptr, &output.data) != GSS_S_COMPLETE)
        return false;
    token = output.View();
    return true;
}

bool GssContext::Unwrap(std::string_view token, std::string& plain)
{
    OM_uint32 minor = 0;
    gss_buffer_desc input = BufferOf(token);
    GssBuffer output;
    if (gss_unwrap(&minor, mContext, &input, &output.data, nullptr, nullptr) != GSS_S_COMPLETE)
        return false;
    plain = output.View();
    return true;
}

} // namespace platform
