// SPDX-License-Identifier: MIT
#include "ldap/LdapTest.h"

#include "base/Owned.h"
#include "ldap/LdapCall.h"
#include "text/Unicode.h"

#include <rpc.h>

#include <algorithm>
#include <iterator>

namespace
{

constexpr LONG kConnectSeconds = 15;
constexpr ULONG kSearchSeconds = 15;
constexpr ULONG kVersion3 = 3;

using Session = Owned<LDAP, ldap_unbind>;

// The identity that ldap_bind_sW takes, with the texts it points to.
class BindIdentity
{
public:
    explicit BindIdentity(const LDAPCreds& creds)
        : mUser(Units(creds.mUser)), mDomain(Units(creds.mDomain)), mPassword(Units(creds.mPassword))
    {
        Point(mUser, mIdentity.User, mIdentity.UserLength);
        Point(mDomain, mIdentity.Domain, mIdentity.DomainLength);
        Point(mPassword, mIdentity.Password, mIdentity.PasswordLength);
        mIdentity.Flags = SEC_WINNT_AUTH_IDENTITY_UNICODE;
    }
    ~BindIdentity()
    {
        for (volatile char16_t& unit : mPassword)
            unit = 0;
    }
    BindIdentity(const BindIdentity&) = delete;
    BindIdentity& operator=(const BindIdentity&) = delete;

    PWCHAR Get() { return reinterpret_cast<PWCHAR>(&mIdentity); }

private:
    static std::u16string Units(const ZTString& text) { return text::ToUtf16(text.AsView()); }
    template <typename Length>
    static void Point(std::u16string& text, unsigned short*& units, Length& length)
    {
        units = reinterpret_cast<unsigned short*>(text.data());
        length = static_cast<Length>(text.size());
    }

    std::u16string mUser;
    std::u16string mDomain;
    std::u16string mPassword;
    SEC_WINNT_AUTH_IDENTITY_W mIdentity{};
};

Session OpenSession(const LdapMethod& method, const LDAPCreds& creds, const LdapConsole& append)
{
    Session session;
    if (method.number == eLDAPAuthSimpleSSL)
    {
        append(L"ldap_sslinit begin ... ");
        session.reset(
            ldap_sslinitW(LdapText(creds.mServer), creds.mPort != 0 ? creds.mPort : LDAP_SSL_PORT, 1));
    }
    else
    {
        append(L"ldap_init begin ... ");
        session.reset(ldap_initW(LdapText(creds.mServer), creds.mPort != 0 ? creds.mPort : LDAP_PORT));
    }
    const ULONG error = LdapGetLastError();
    const ZTString errorText = LdapErrorText(error);
    append(L"end\r\n");
    if (!session)
    {
        append(_StrFormat(L"LDAP: Failed to initialize LDAP session.  Err={0:d}, {1:s}\r\n",
                          {error, errorText}));
    }
    return session;
}

void SetOption(LDAP* session, int option, const void* value, const wchar_t* format, const LdapConsole& append)
{
    const ULONG result = ldap_set_optionW(session, option, value);
    append(_StrFormat(format, {LdapOutcome(result), result}));
}

bool Connect(LDAP* session, const LDAPCreds& creds, const LdapConsole& append)
{
    append(_StrFormat(L"ldap_connect({0:s}) begin ...", {creds.mServer}));
    LDAP_TIMEVAL timeout{};
    timeout.tv_sec = kConnectSeconds;
    const ULONG result = ldap_connect(session, &timeout);
    const ZTString errorText = LdapErrorText(LdapGetLastError());
    append(LdapResultLine(result));
    if (result == 0)
        return true;
    append(_StrFormat(L"LDAP: Failed to connect to LDAP server {0:s}.  Err={1:d}, {2:s}\r\n",
                      {creds.mServer, result, errorText}));
    return false;
}

bool Bind(LDAP* session, const LdapMethod& method, const LDAPCreds& creds, const LdapConsole& append)
{
    append(method.beginText);
    const ULONG result = method.bind == 0
                             ? ldap_simple_bind_sW(session, LdapText(creds.mUser), LdapText(creds.mPassword))
                             : ldap_bind_sW(session, nullptr, BindIdentity(creds).Get(), method.bind);
    const ZTString errorText = LdapErrorText(result);
    append(LdapResultLine(result));
    if (result == 0)
        return true;
    append(errorText);
    append(L"\r\n");
    return false;
}

// In the order in which they are tried.
std::vector<LdapMethod> Attempts(DWORD number)
{
    std::vector<LdapMethod> attempts;
    for (const LdapMethod& method : kLdapMethods)
        if (number == eLDAPAuthTryAll || number == method.number)
            attempts.push_back(method);
    std::ranges::sort(attempts, {}, &LdapMethod::turn);
    return attempts;
}

// From the session to the bind and, where that succeeds, the walk. True when it did.
bool TryMethod(const LdapMethod& method, const LDAPCreds& creds, const LdapConsole& append,
               const std::function<void(LDAP*)>& walk)
{
    append(L"\r\n");
    const Session session = OpenSession(method, creds, append);
    if (!session)
        return false;
    SetOption(session.get(), LDAP_OPT_TCP_KEEPALIVE, LDAP_OPT_ON, L"Set TCP keep alive - {0:s} ({1:08X})\r\n",
              append);
    SetOption(session.get(), LDAP_OPT_REFERRALS, LDAP_OPT_OFF,
              L"Set no follow referrals - {0:s} ({1:08X})\r\n", append);
    if (!Connect(session.get(), creds, append))
        return false;

    ULONG version = 0;
    ldap_get_optionW(session.get(), LDAP_OPT_PROTOCOL_VERSION, &version);
    if (version == kVersion3)
    {
        SetOption(session.get(), LDAP_OPT_PROTOCOL_VERSION, &version,
                  L"Set protocol ver=3 - {0:s} ({1:08X})\r\n", append);
    }
    ULONG seconds = kSearchSeconds;
    SetOption(session.get(), LDAP_OPT_TIMELIMIT, &seconds, L"Set timeout (15 sec) - {0:s} ({1:08X})\r\n",
              append);
    if (!Bind(session.get(), method, creds, append))
        return false;
    walk(session.get());
    return true;
}

} // namespace

void TestLdapServer(const LDAPCreds& creds, const LdapConsole& append, const std::function<void(LDAP*)>& walk)
{
    append(L"\r\n========= LDAP =========\r\n");
    append(_StrFormat(L"Server: {0:s}\r\n", {creds.mServer}));
    append(_StrFormat(L"Domain: {0:s}\r\n", {creds.mDomain}));
    append(_StrFormat(L"User: {0:s}\r\n", {creds.mUser}));
    for (const LdapMethod& method : Attempts(creds.mAuthMethod))
        if (TryMethod(method, creds, append, walk))
            break;
    append(L"END TEST\r\n");
}
