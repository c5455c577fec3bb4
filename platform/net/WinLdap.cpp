// SPDX-License-Identifier: MIT
// The LDAP client under its Windows names: texts and codes on this side, the session on the other.
#include "platform/net/LdapSession.h"

#include "text/Unicode.h"

#include <rpcdce.h>
#include <winber.h>
#include <winldap.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

using namespace platform;

namespace
{

constexpr ULONG kLdapVersion = 3;
constexpr std::chrono::seconds kConnectLimit{15};

LdapSession& SessionOf(LDAP* session)
{
    return *reinterpret_cast<LdapSession*>(session);
}

std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

ULONG WrongParameter(const char* cause)
{
    return RememberFault({eLdapParameterError, cause});
}

// The code and cause of a call. Where the system has no more threads or memory, the program goes on.
template <typename Call>
ULONG Attempt(Call call)
{
    try
    {
        return RememberFault(call());
    }
    catch (const std::system_error& error)
    {
        return RememberFault({eLdapLocalError, CauseText(error.code().message())});
    }
    catch (const std::bad_alloc&)
    {
        return RememberFault({eLdapNoMemory, {}});
    }
}

LDAP* NewSession(const wchar_t* host, ULONG port, bool tls)
{
    LDAP* session = nullptr;
    Attempt(
        [&]
        {
            std::vector<LdapHost> hosts;
            LdapFault fault = ParseHosts(text::ToUtf8(ViewOf(host)), port, hosts);
            if (!fault)
                session = reinterpret_cast<LDAP*>(new LdapSession(std::move(hosts), tls));
            return fault;
        });
    return session;
}

std::wstring WideOf(const unsigned short* units, ULONG length)
{
    return text::FromUtf16({reinterpret_cast<const char16_t*>(units), length});
}

Secret SecretOf(const unsigned short* units, ULONG length)
{
    std::wstring wide = WideOf(units, length);
    Secret secret{std::wstring_view(wide)};
    explicit_bzero(wide.data(), wide.size() * sizeof(wchar_t));
    return secret;
}

// A text that ldap_memfreeW takes; null where there is no memory.
PWCHAR NewText(std::string_view bytes)
{
    const std::wstring wide = text::FromUtf8(bytes);
    const auto given = static_cast<PWCHAR>(std::malloc((wide.size() + 1) * sizeof(wchar_t)));
    if (given != nullptr)
        std::copy_n(wide.c_str(), wide.size() + 1, given);
    return given;
}

// The name that `find` has put into its argument, as such a text; null where it gives false.
template <typename Find>
PWCHAR NameFrom(Find find)
{
    PWCHAR given = nullptr;
    Attempt(
        [&]
        {
            std::string name;
            if (find(name))
                given = NewText(name);
            return LdapFault();
        });
    return given;
}

} // namespace

LDAP* ldap_initW(const PWCHAR host, ULONG port)
{
    return NewSession(host, port, false);
}

LDAP* ldap_sslinitW(PWCHAR host, ULONG port, int secure)
{
    return NewSession(host, port, secure != 0);
}

ULONG ldap_set_optionW(LDAP* session, int option, const void* value)
{
    if (session == nullptr)
        return WrongParameter("no session");
    switch (option)
    {
    case LDAP_OPT_TCP_KEEPALIVE:
        SessionOf(session).SetKeepAlive(value != LDAP_OPT_OFF);
        return eLdapSuccess;
    case LDAP_OPT_REFERRALS:
        if (value != LDAP_OPT_OFF)
            return WrongParameter("referrals cannot be followed");
        return eLdapSuccess;
    case LDAP_OPT_PROTOCOL_VERSION:
        if (*static_cast<const ULONG*>(value) != kLdapVersion)
            return WrongParameter("the protocol version is 3");
        return eLdapSuccess;
    case LDAP_OPT_TIMELIMIT:
        SessionOf(session).SetTimeLimit(std::chrono::seconds(*static_cast<const ULONG*>(value)));
        return eLdapSuccess;
    default:
        return WrongParameter("an option that is not offered");
    }
}

ULONG ldap_get_optionW(LDAP* session, int option, void* value)
{
    if (session == nullptr || option != LDAP_OPT_PROTOCOL_VERSION)
        return WrongParameter("an option that is not offered");
    *static_cast<ULONG*>(value) = kLdapVersion;
    return eLdapSuccess;
}

ULONG ldap_connect(LDAP* session, LDAP_TIMEVAL* timeout)
{
    const std::chrono::microseconds limit =
        timeout != nullptr
            ? std::chrono::seconds(timeout->tv_sec) + std::chrono::microseconds(timeout->tv_usec)
            : kConnectLimit;
    return Attempt([&] { return SessionOf(session).Connect(limit); });
}

ULONG ldap_simple_bind_sW(LDAP* session, PWCHAR name, PWCHAR password)
{
    return Attempt(
        [&] { return SessionOf(session).BindSimple(text::ToUtf8(ViewOf(name)), Secret(ViewOf(password))); });
}

ULONG ldap_bind_sW(LDAP* session, PWCHAR, PWCHAR credentials, ULONG method)
{
    const auto* given = reinterpret_cast<const SEC_WINNT_AUTH_IDENTITY_W*>(credentials);
    if (method == LDAP_AUTH_DPA)
        return RememberFault({eLdapAuthMethodNotSupported, {}});
    if (given == nullptr)
        return WrongParameter("no credentials");
    return Attempt(
        [&]() -> LdapFault
        {
            const LdapIdentity identity = {text::ToUtf8(WideOf(given->User, given->UserLength)),
                                           text::ToUtf8(WideOf(given->Domain, given->DomainLength)),
                                           SecretOf(given->Password, given->PasswordLength)};
            switch (method)
            {
            case LDAP_AUTH_DIGEST:
                return SessionOf(session).BindDigest(identity);
            case LDAP_AUTH_NTLM:
                return SessionOf(session).BindGss(identity, GssMethod::Ntlm);
            case LDAP_AUTH_NEGOTIATE:
                return SessionOf(session).BindGss(identity, GssMethod::Negotiate);
            default:
                return {eLdapAuthUnknown, {}};
            }
        });
}

ULONG ldap_unbind(LDAP* session)
{
    delete reinterpret_cast<LdapSession*>(session);
    return eLdapSuccess;
}

ULONG ldap_search_sW(LDAP* session, const PWCHAR base, ULONG scope, const PWCHAR filter, PWCHAR attributes[],
                     ULONG namesOnly, LDAPMessage** result)
{
    return Attempt(
        [&]
        {
            std::vector<std::string> names;
            for (PWCHAR* attribute = attributes; *attribute != nullptr; ++attribute)
                names.push_back(text::ToUtf8(*attribute));
            std::vector<const char*> list(names.size() + 1); // null at the end
            std::ranges::transform(
                names, list.begin(), [](const std::string& name) { return name.c_str(); });
            LdapSession::Messages found;
            LdapFault fault =
                SessionOf(session).Search(text::ToUtf8(ViewOf(base)), static_cast<int>(scope),
                                          text::ToUtf8(ViewOf(filter)), list.data(), namesOnly != 0, found);
            *result = found.release();
            return fault;
        });
}

LDAPMessage* ldap_next_entry(LDAP* session, LDAPMessage* entry)
{
    return SessionOf(session).NextEntry(entry);
}

ULONG ldap_msgfree(LDAPMessage* result)
{
    LdapSession::FreeMessages(result);
    return eLdapSuccess;
}

PWCHAR ldap_first_attributeW(LDAP* session, LDAPMessage* entry, BerElement** position)
{
    return NameFrom([=](std::string& name)
                    { return SessionOf(session).FirstAttribute(entry, *position, name); });
}

PWCHAR ldap_next_attributeW(LDAP* session, LDAPMessage* entry, BerElement* position)
{
    return NameFrom([=](std::string& name)
                    { return SessionOf(session).NextAttribute(entry, position, name); });
}

PWCHAR* ldap_get_valuesW(LDAP* session, LDAPMessage* entry, const PWCHAR attribute)
{
    PWCHAR* list = nullptr;
    Attempt(
        [&]
        {
            std::vector<std::string_view> values;
            if (SessionOf(session).Values(entry, text::ToUtf8(ViewOf(attribute)), values))
                list = static_cast<PWCHAR*>(std::calloc(values.size() + 1, sizeof(PWCHAR)));
            if (list == nullptr)
                return LdapFault();
            for (std::size_t i = 0; i < values.size(); ++i)
            {
                list[i] = NewText(values[i]);
                if (list[i] == nullptr)
                {
                    ldap_value_freeW(std::exchange(list, nullptr));
                    break;
                }
            }
            return LdapFault();
        });
    return list;
}

ULONG ldap_value_freeW(PWCHAR* values)
{
    for (PWCHAR* value = values; value != nullptr && *value != nullptr; ++value)
        std::free(*value);
    std::free(values);
    return eLdapSuccess;
}

void ldap_memfreeW(PWCHAR block)
{
    std::free(block);
}

void ber_free(BerElement* element, INT freeBuffer)
{
    LdapSession::FreePosition(element, freeBuffer);
}
