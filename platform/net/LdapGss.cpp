// SPDX-License-Identifier: MIT
#include "platform/net/LdapGss.h"

#include "platform/net/RunWithin.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include <gssapi/gssapi_ext.h>
#include <gssapi/gssapi_krb5.h>

namespace
{

// In Windows' numbers; the header of OpenLDAP's library has other ones.
constexpr std::uint32_t kInvalidCredentials = 0x31;
constexpr std::uint32_t kLocalError = 0x52;
constexpr std::uint32_t kAuthUnknown = 0x56;

constexpr std::size_t kLongestPlain = 65'536; // wrapped in one token, in bytes

constexpr OM_uint32 kProtected =
    GSS_C_MUTUAL_FLAG | GSS_C_REPLAY_FLAG | GSS_C_SEQUENCE_FLAG | GSS_C_INTEG_FLAG | GSS_C_CONF_FLAG;

gss_OID_desc kSpnego = {6, const_cast<char*>("\x2b\x06\x01\x05\x05\x02")};
gss_OID_desc kNtlm = {10, const_cast<char*>("\x2b\x06\x01\x04\x01\x82\x37\x02\x02\x0a")};
gss_OID_desc kKerberos = {9, const_cast<char*>("\x2a\x86\x48\x86\xf7\x12\x01\x02\x02")};

struct FreeGssName
{
    using pointer = gss_name_t;
    void operator()(gss_name_t name) const
    {
        OM_uint32 minor = 0;
        gss_release_name(&minor, &name);
    }
};
using GssName = std::unique_ptr<gss_name_t, FreeGssName>;

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
    return {isWrongPassword ? kInvalidCredentials : kLocalError, StatusText(major, minor, mechanism)};
}

GssName ImportName(const std::string& text, gss_OID type)
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
GssCredential AcquireCredential(const std::string& user, const Secret& password, gss_OID mechanism,
                                gss_OID inner, LdapFault& fault)
{
    OM_uint32 minor = 0;
    const GssName name = ImportName(user, GSS_C_NT_USER_NAME);
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

// A name of Kerberos in text form: what parts its components is escaped inside of them.
std::string Escaped(const std::string& component)
{
    std::string text;
    for (const char character : component)
    {
        if (std::strchr("/@\\", character) != nullptr && character != '\0')
            text += '\\';
        text += character;
    }
    return text;
}

} // namespace

GssContext::GssContext(GssCredential credential, gss_OID mechanism, gss_name_t target)
    : mCredential(std::move(credential)), mMechanism(mechanism), mTarget(target),
      mWanted(mechanism == &kSpnego ? kProtected : 0)
{
}

GssContext::~GssContext()
{
    OM_uint32 minor = 0;
    gss_delete_sec_context(&minor, &mContext, GSS_C_NO_BUFFER);
    gss_release_name(&minor, &mTarget);
}

std::unique_ptr<GssContext> GssContext::MakeWithin(Deadline deadline, std::function<void(Making&)> make,
                                                   LdapFault& fault)
{
    auto outcome = RunWithin(deadline,
                             [make = std::move(make)]
                             {
                                 Making making;
                                 make(making);
                                 return making;
                             });
    if (!outcome)
    {
        fault = {kLocalError, "the ticket server gave no answer in time"};
        return nullptr;
    }
    fault = outcome->fault;
    return std::move(outcome->context);
}

std::unique_ptr<GssContext> GssContext::Ntlm(const LdapIdentity& identity, const std::string& host, bool bare,
                                             Deadline deadline, LdapFault& fault)
{
    if (!IsInstalled(kNtlm))
    {
        fault = {kAuthUnknown, "NTLM is not installed on this machine (package gss-ntlmssp)"};
        return nullptr;
    }
    if (identity.user.empty())
    {
        fault = {kInvalidCredentials, "no user name was given"};
        return nullptr;
    }
    const std::size_t at = identity.user.find('@');
    const std::string domain =
        identity.domain.empty() && at != std::string::npos ? identity.user.substr(at + 1) : identity.domain;
    const std::string name = identity.user.substr(0, identity.domain.empty() ? at : std::string::npos);
    const std::string user = domain.empty() ? name : domain + "\\" + name;
    // SPNEGO's credential is made of one of each mechanism, for which Kerberos asks its servers, too.
    return MakeWithin(
        deadline,
        [user, password = identity.password, host, bare](Making& making)
        {
            const gss_OID mechanism = bare ? &kNtlm : &kSpnego;
            GssCredential credential =
                AcquireCredential(user, password, mechanism, bare ? nullptr : &kNtlm, making.fault);
            if (!credential)
                return;
            GssName target = ImportName("ldap@" + host, GSS_C_NT_HOSTBASED_SERVICE);
            making.context.reset(new GssContext(std::move(credential), mechanism, target.release()));
        },
        fault);
}

std::unique_ptr<GssContext> GssContext::WithTicket(const std::string& user, const Secret& password,
                                                   const std::string& target, gss_OID mechanism,
                                                   LdapFault& fault)
{
    GssCredential credential =
        AcquireCredential(user, password, mechanism, mechanism == &kSpnego ? &kKerberos : nullptr, fault);
    if (!credential)
        return nullptr;
    const auto make = [&]
    {
        GssName name = ImportName(target, const_cast<gss_OID>(GSS_KRB5_NT_PRINCIPAL_NAME));
        return std::unique_ptr<GssContext>(new GssContext(std::move(credential), mechanism, name.release()));
    };
    const std::unique_ptr<GssContext> first = make();
    std::string token;
    fault = first->Step({}, token);
    credential = std::move(first->mCredential);
    return fault ? nullptr : make();
}

std::unique_ptr<GssContext> GssContext::Kerberos(const LdapIdentity& identity, const std::string& realm,
                                                 const std::string& host, Deadline deadline, LdapFault& fault)
{
    // The realm of the target is left open: the servers of the user's realm refer to the right one.
    const std::string target = "ldap/" + Escaped(host) + "@";
    const std::string user = Escaped(identity.user.substr(0, identity.user.find('@'))) + "@" + realm;
    return MakeWithin(
        deadline,
        [target, user, password = identity.password](Making& making)
        {
            // SPNEGO does not tell why there is no ticket: Kerberos itself is asked first.
            making.context = WithTicket(user, password, target, &kKerberos, making.fault);
            if (!making.fault)
                making.context = WithTicket(user, password, target, &kSpnego, making.fault);
        },
        fault);
}

LdapFault GssContext::Step(const std::string& token, std::string& reply)
{
    OM_uint32 minor = 0;
    gss_buffer_desc input = BufferOf(token);
    GssBuffer output;
    const OM_uint32 major =
        gss_init_sec_context(&minor, mCredential.get(), &mContext, mTarget, mMechanism, mWanted, 0,
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
    const int seal = (mFlags & GSS_C_CONF_FLAG) ? 1 : 0;
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

void GssLayer::Attach(Sockbuf* buffer)
{
    static Sockbuf_IO io = {Setup, nullptr, Control, Read, Write, nullptr};
    ber_sockbuf_add_io(buffer, &io, LBER_SBIOD_LEVEL_APPLICATION, this);
}

GssLayer& GssLayer::Of(Sockbuf_IO_Desc* layer)
{
    return *static_cast<GssLayer*>(layer->sbiod_pvt);
}

int GssLayer::Setup(Sockbuf_IO_Desc* layer, void* self)
{
    layer->sbiod_pvt = self;
    return 0;
}

int GssLayer::Control(Sockbuf_IO_Desc* layer, int option, void* argument)
{
    const GssLayer& self = Of(layer);
    if (option == LBER_SB_OPT_DATA_READY && (self.mPlainAt < self.mPlain.size() || self.mIncoming.HasNext()))
        return 1;
    return LBER_SBIOD_CTRL_NEXT(layer, option, argument);
}

ber_slen_t GssLayer::Read(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length)
{
    GssLayer& self = Of(layer);
    while (self.mPlainAt == self.mPlain.size())
    {
        std::string token;
        if (self.mIncoming.Next(token))
        {
            self.mPlainAt = 0;
            if (!self.mContext->Unwrap(token, self.mPlain))
            {
                errno = EPROTO;
                return -1;
            }
            continue;
        }
        char raw[16384];
        const ber_slen_t got = LBER_SBIOD_READ_NEXT(layer, raw, sizeof(raw));
        if (got <= 0)
            return got;
        if (!self.mIncoming.Append({raw, static_cast<std::size_t>(got)}))
        {
            errno = EPROTO;
            return -1;
        }
    }
    const std::size_t count = std::min<std::size_t>(length, self.mPlain.size() - self.mPlainAt);
    std::memcpy(bytes, self.mPlain.data() + self.mPlainAt, count);
    self.mPlainAt += count;
    return static_cast<ber_slen_t>(count);
}

ber_slen_t GssLayer::Write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length)
{
    GssLayer& self = Of(layer);
    // After a refusal for now the same bytes come again: what they became must go out first.
    if (self.mOutgoing.empty())
    {
        const std::string_view plain(static_cast<const char*>(bytes),
                                     std::min<std::size_t>(length, kLongestPlain));
        std::string token;
        if (!self.mContext->Wrap(plain, token))
        {
            errno = EPROTO;
            return -1;
        }
        self.mOutgoing = GssFrames::Frame(token);
        self.mOutgoingPlain = plain.size();
    }
    while (!self.mOutgoing.empty())
    {
        const ber_slen_t put = LBER_SBIOD_WRITE_NEXT(layer, self.mOutgoing.data(), self.mOutgoing.size());
        if (put <= 0)
            return put;
        self.mOutgoing.erase(0, static_cast<std::size_t>(put));
    }
    return static_cast<ber_slen_t>(self.mOutgoingPlain);
}
