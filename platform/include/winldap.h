// SPDX-License-Identifier: MIT
// The LDAP client. Differences from Windows: a new session is version 3; no referral is followed, whatever
// the option says; a call gives up after 15 seconds where no option or argument sets another time; the text
// of an error names its cause (see ldap_err2stringW). One thread at a time uses a session. Nothing but the
// machine's trust store and Kerberos set-up has a say: no set-up file and no variable of an LDAP library.
#pragma once

#include "windef.h"

#include "platformExport.h"

struct ldap;
struct ldapmsg;
struct berelement;
using LDAP = ldap;
using LDAPMessage = ldapmsg;
using BerElement = berelement;

struct LDAP_TIMEVAL
{
    LONG tv_sec;
    LONG tv_usec;
};
using PWCHAR = wchar_t*;

#define LDAP_PORT 389
#define LDAP_SSL_PORT 636

#define LDAP_AUTH_OTHERKIND 0x86U
#define LDAP_AUTH_NEGOTIATE (LDAP_AUTH_OTHERKIND | 0x0400U)
#define LDAP_AUTH_NTLM (LDAP_AUTH_OTHERKIND | 0x1000U)
#define LDAP_AUTH_DPA (LDAP_AUTH_OTHERKIND | 0x2000U)
#define LDAP_AUTH_DIGEST (LDAP_AUTH_OTHERKIND | 0x4000U)

#define LDAP_OPT_TIMELIMIT 0x04
#define LDAP_OPT_REFERRALS 0x08
#define LDAP_OPT_PROTOCOL_VERSION 0x11
#define LDAP_OPT_TCP_KEEPALIVE 0x40
#define LDAP_OPT_ON (reinterpret_cast<void*>(1))
#define LDAP_OPT_OFF (nullptr)

#define LDAP_SCOPE_BASE 0x00
#define LDAP_SCOPE_ONELEVEL 0x01

// The OpenLDAP library that does the work has calls of the same names in the same process: these five bear
// another symbol, so that neither takes the other's place.
#define WLDAP32_SYMBOL(name) __asm__("wldap32_" #name)

extern "C"
{
    // Neither call touches the network. `host` is a list of names or addresses, separated by blanks, each
    // with a port of its own after a colon if need be; an IPv6 address with a port stands in brackets. Null
    // with 0x59 (parameter error) when a port in it is not one, or a URL stands in a name's place.
    PLATFORM_EXPORT LDAP* ldap_initW(const PWCHAR host, ULONG port);
    // Speaks TLS from the first byte when `secure` is not 0; the server's certificate must be good for the
    // name in `host` by the machine's trust store.
    PLATFORM_EXPORT LDAP* ldap_sslinitW(PWCHAR host, ULONG port, int secure);

    // Offered are the four LDAP_OPT_ above, of which only the version can be read.
    PLATFORM_EXPORT ULONG ldap_set_optionW(LDAP* session, int option, const void* value);
    PLATFORM_EXPORT ULONG ldap_get_optionW(LDAP* session, int option, void* value);

    // Tries every address of every host until one answers, TLS included, all within `timeout`.
    PLATFORM_EXPORT ULONG ldap_connect(LDAP* session, LDAP_TIMEVAL* timeout) WLDAP32_SYMBOL(ldap_connect);

    PLATFORM_EXPORT ULONG ldap_simple_bind_sW(LDAP* session, PWCHAR name, PWCHAR password);
    // `credentials` is a SEC_WINNT_AUTH_IDENTITY_W and the only source of credentials. Negotiate takes
    // Kerberos when a ticket can be had for the user, NTLM otherwise.
    PLATFORM_EXPORT ULONG ldap_bind_sW(LDAP* session, PWCHAR name, PWCHAR credentials, ULONG method);
    PLATFORM_EXPORT ULONG ldap_unbind(LDAP* session) WLDAP32_SYMBOL(ldap_unbind);

    // The code of the calling thread's last call that failed.
    PLATFORM_EXPORT ULONG LdapGetLastError();
    // The Windows client's text of the code. When it is the code of the thread's last failed call, the cause
    // follows as far as it is known ("Server Down: connection refused"): what the server or the system said
    // of it, without control characters. Such a text lasts until the thread's next failed call.
    PLATFORM_EXPORT PWCHAR ldap_err2stringW(ULONG code);

    // A result is a chain of messages, of at most 64 MB, each of at most 16 MB; what is larger fails with
    // 0x46 (results too large) and loses the connection. A message that is not an entry has no attributes.
    PLATFORM_EXPORT ULONG ldap_search_sW(LDAP* session, const PWCHAR base, ULONG scope, const PWCHAR filter,
                                         PWCHAR attributes[], ULONG namesOnly, LDAPMessage** result);
    PLATFORM_EXPORT LDAPMessage* ldap_next_entry(LDAP* session, LDAPMessage* entry)
        WLDAP32_SYMBOL(ldap_next_entry);
    PLATFORM_EXPORT ULONG ldap_msgfree(LDAPMessage* result) WLDAP32_SYMBOL(ldap_msgfree);
    PLATFORM_EXPORT PWCHAR ldap_first_attributeW(LDAP* session, LDAPMessage* entry, BerElement** position);
    PLATFORM_EXPORT PWCHAR ldap_next_attributeW(LDAP* session, LDAPMessage* entry, BerElement* position);
    // The values of the attribute that one of the two calls above gave last. Null for any other, and where
    // they cannot be read.
    PLATFORM_EXPORT PWCHAR* ldap_get_valuesW(LDAP* session, LDAPMessage* entry, const PWCHAR attribute);
    PLATFORM_EXPORT ULONG ldap_value_freeW(PWCHAR* values);
    PLATFORM_EXPORT void ldap_memfreeW(PWCHAR block);
}
