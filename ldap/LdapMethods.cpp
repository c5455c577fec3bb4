// SPDX-License-Identifier: MIT
#include "ldap/LdapMethods.h"

#include <winldap.h>

const std::array<LdapMethod, 6> kLdapMethods = {{
    {eLDAPAuthSimpleSSL, L"Simple bind - SSL", L"ldap_simple_bind_s begin ...", 0, 1},
    {eLDAPAuthSimplePlain, L"Simple bind - plain text", L"ldap_bind_s(plain text) begin ...", 0, 6},
    {eLDAPAuthNTLM, L"NTLM", L"ldap_bind_s(NTLM) begin ...", LDAP_AUTH_NTLM, 2},
    {eLDAPAuthDigest, L"Digest", L"ldap_bind_s(Digest) begin ...", LDAP_AUTH_DIGEST, 3},
    {eLDAPAuthDPA, L"DPA", L"ldap_bind_s(DPA) begin ...", LDAP_AUTH_DPA, 4},
    {eLDAPAuthNegotiate, L"Negotiate", L"ldap_bind_s(negotiate) begin ...", LDAP_AUTH_NEGOTIATE, 5},
}};
