// SPDX-License-Identifier: MIT
// The LDAP client under its Windows names: texts and codes on this side, the session on the other.
#include "platform/net/LdapSession.h"
#include "platform/net/LdapText.h"

#include "text/Unicode.h"

#include <rpcdce.h>
#include <winber.h>
#include <winldap.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>

namespace
{

constexpr ULONG kLdapVersion = 3;
constexpr std::chrono::seconds kConnectLimit{15};

LdapSession* SessionOf(LDAP* session)
{
    return reinterpret_cast<LdapSession*>(session);
}

LdapEntry* EntryOf(LDAPMessage* message)
{
    return reinterpret_cast<LdapEntry*>(message);
}

std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

LdapFault WrongParameter(const char* cause)
{
    return {LDAP_PARAM_ERROR, cause};
}

// The code and cause of a call, some of which need a thread: a system that has no more of them is no reason
// to end the program.
template <typename Call>
ULONG Attempt(Call call)
{
    try
    {
        return RememberFault(call());
    }
    catch (const std::system_error& error)
    {
        return RememberFault({LDAP_LOCAL_ERROR, CauseText(error.code().message())});
    }
}

LDAP* NewSession(const wchar_t* host, ULONG port, bool tls)
{
    std::optional<std::vector<LdapHost>> hosts = ParseHosts(ToUtf8(ViewOf(host)), port);
    if (!hosts)
    {
        RememberFault(WrongParameter("the port is no number from 1 to 65535"));
        return nullptr;
    }
    return reinterpret_cast<LDAP*>(new LdapSession(std::move(*hosts), tls));
}

Secret SecretOf(const unsigned short* units, ULONG length)
{
    std::wstring wide = text::FromUtf16({reinterpret_cast<const char16_t*>(units), length});
    Secret secret{std::wstring_view(wide)};
    explicit_bzero(wide.data(), wide.size() * sizeof(wchar_t));
    return secret;
}

std::string Utf8Of(const unsigned short* units, ULONG length)
{
    return ToUtf8(text::FromUtf16({reinterpret_cast<const char16_t*>(units), length}));
}

// A text for ldap_memfreeW.
PWCHAR NewText(std::string_view text)
{
    const auto wide = static_cast<PWCHAR>(std::calloc(text.size() + 1, sizeof(wchar_t)));
    DecodeUtf8(text, wide);
    return wide;
}

// Where a caller is among an entry's attributes: those that he has not seen.
std::string_view* PositionOf(BerElement* position)
{
    return reinterpret_cast<std::string_view*>(position);
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
        return RememberFault(WrongParameter("no session"));
    switch (option)
    {
    case LDAP_OPT_TCP_KEEPALIVE:
        SessionOf(session)->SetKeepAlive(value != LDAP_OPT_OFF);
        return LDAP_SUCCESS;
    case LDAP_OPT_REFERRALS:
        if (value != LDAP_OPT_OFF)
            return RememberFault(WrongParameter("referrals cannot be followed"));
        return LDAP_SUCCESS;
    case LDAP_OPT_PROTOCOL_VERSION:
        if (*static_cast<const ULONG*>(value) != kLdapVersion)
            return RememberFault(WrongParameter("the protocol version is 3"));
        return LDAP_SUCCESS;
    case LDAP_OPT_TIMELIMIT:
        SessionOf(session)->SetTimeLimit(std::chrono::seconds(*static_cast<const ULONG*>(value)));
        return LDAP_SUCCESS;
    default:
        return RememberFault(WrongParameter("an option that is not offered"));
    }
}

ULONG ldap_get_optionW(LDAP* session, int option, void* value)
{
    if (session == nullptr || option != LDAP_OPT_PROTOCOL_VERSION)
        return RememberFault(WrongParameter("an option that is not offered"));
    *static_cast<ULONG*>(value) = kLdapVersion;
    return LDAP_SUCCESS;
}

ULONG ldap_connect(LDAP* session, LDAP_TIMEVAL* timeout)
{
    const std::chrono::microseconds limit =
        timeout != nullptr
            ? std::chrono::seconds(timeout->tv_sec) + std::chrono::microseconds(timeout->tv_usec)
            : kConnectLimit;
    return Attempt([&] { return SessionOf(session)->Connect(limit); });
}

ULONG ldap_simple_bind_sW(LDAP* session, PWCHAR name, PWCHAR password)
{
    return RememberFault(SessionOf(session)->BindSimple(ToUtf8(ViewOf(name)), Secret(ViewOf(password))));
}

ULONG ldap_bind_sW(LDAP* session, PWCHAR, PWCHAR credentials, ULONG method)
{
    const auto* given = reinterpret_cast<const SEC_WINNT_AUTH_IDENTITY_W*>(credentials);
    if (method == LDAP_AUTH_DPA)
        return RememberFault({LDAP_AUTH_METHOD_NOT_SUPPORTED, {}});
    if (given == nullptr)
        return RememberFault(WrongParameter("no credentials"));
    const LdapIdentity identity = {Utf8Of(given->User, given->UserLength),
                                   Utf8Of(given->Domain, given->DomainLength),
                                   SecretOf(given->Password, given->PasswordLength)};
    LdapSession& bound = *SessionOf(session);
    switch (method)
    {
    case LDAP_AUTH_DIGEST:
        return RememberFault(bound.BindDigest(identity));
    case LDAP_AUTH_NTLM:
        return Attempt([&] { return bound.BindGss(identity, GssMethod::Ntlm); });
    case LDAP_AUTH_NEGOTIATE:
        return Attempt([&] { return bound.BindGss(identity, GssMethod::Negotiate); });
    default:
        return RememberFault({LDAP_AUTH_UNKNOWN, {}});
    }
}

ULONG ldap_unbind(LDAP* session)
{
    delete SessionOf(session);
    return LDAP_SUCCESS;
}

ULONG ldap_search_sW(LDAP* session, const PWCHAR base, ULONG scope, const PWCHAR filter, PWCHAR attributes[],
                     ULONG namesOnly, LDAPMessage** result)
{
    std::vector<std::string> names;
    for (PWCHAR* attribute = attributes; attribute != nullptr && *attribute != nullptr; ++attribute)
        names.push_back(ToUtf8(*attribute));
    std::vector<const char*> list(names.size() + 1); // null at the end
    std::ranges::transform(names, list.begin(), [](const std::string& name) { return name.c_str(); });
    LdapResult found;
    const LdapFault fault =
        SessionOf(session)->Search(ToUtf8(ViewOf(base)), static_cast<int>(scope), ToUtf8(ViewOf(filter)),
                                   attributes != nullptr ? list.data() : nullptr, namesOnly != 0, found);
    *result = reinterpret_cast<LDAPMessage*>(found.Release());
    return RememberFault(fault);
}

LDAPMessage* ldap_next_entry(LDAP*, LDAPMessage* entry)
{
    return entry != nullptr ? reinterpret_cast<LDAPMessage*>(const_cast<LdapEntry*>(NextOf(EntryOf(entry))))
                            : nullptr;
}

ULONG ldap_msgfree(LDAPMessage* result)
{
    std::free(result);
    return LDAP_SUCCESS;
}

PWCHAR ldap_first_attributeW(LDAP* session, LDAPMessage* entry, BerElement** position)
{
    *position = reinterpret_cast<BerElement*>(new std::string_view(AttributesOf(EntryOf(entry))));
    return ldap_next_attributeW(session, entry, *position);
}

PWCHAR ldap_next_attributeW(LDAP*, LDAPMessage*, BerElement* position)
{
    const std::optional<LdapAttribute> attribute = TakeAttribute(*PositionOf(position));
    return attribute ? NewText(attribute->name) : nullptr;
}

PWCHAR* ldap_get_valuesW(LDAP*, LDAPMessage* entry, const PWCHAR attribute)
{
    const std::optional<std::vector<std::string_view>> values =
        ValuesOf(EntryOf(entry), ToUtf8(ViewOf(attribute)));
    if (!values)
        return nullptr;
    auto list = static_cast<PWCHAR*>(std::calloc(values->size() + 1, sizeof(PWCHAR)));
    for (std::size_t i = 0; i < values->size(); ++i)
        list[i] = NewText((*values)[i]);
    return list;
}

ULONG ldap_value_freeW(PWCHAR* values)
{
    for (PWCHAR* value = values; value != nullptr && *value != nullptr; ++value)
        std::free(*value);
    std::free(values);
    return LDAP_SUCCESS;
}

void ldap_memfreeW(PWCHAR block)
{
    std::free(block);
}

void ber_free(BerElement* element, INT)
{
    delete PositionOf(element);
}
