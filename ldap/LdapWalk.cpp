// SPDX-License-Identifier: MIT
#include "ldap/LdapTest.h"

#include "base/Owned.h"
#include "ldap/LdapCall.h"
#include "text/SafeToShow.h"

#include <winber.h>

namespace
{

constexpr int kPasses = 2;
constexpr wchar_t kFilter[] = L"(objectClass=*)";
constexpr wchar_t kNamingContextsKey[] = L"namingcontexts";

std::vector<ZTString> ReadValues(LDAP* session, LDAPMessage* entry, PWCHAR name)
{
    PWCHAR* const values = ldap_get_valuesW(session, entry, name);
    std::vector<ZTString> texts;
    for (const PWCHAR* value = values; value != nullptr && *value != nullptr; ++value)
        texts.emplace_back(*value);
    ldap_value_freeW(values); // null included
    return texts;
}

// Visits the messages of a result, the result's handle being the first, and gives their number. Each value
// of a root entry's naming contexts replaces the one before.
int VisitEntries(LDAP* session, LDAPMessage* result, bool root, ZTString& namingContext)
{
    int objects = 0;
    for (LDAPMessage* entry = result; entry != nullptr; entry = ldap_next_entry(session, entry))
    {
        LDAPAttributes attributes = GetEntryAttributes(session, entry);
        if (root)
            for (const ZTString& value : attributes[kNamingContextsKey])
                namingContext = value;
        ++objects;
    }
    return objects;
}

void Search(LDAP* session, ZTString& namingContext, const LdapConsole& append)
{
    const bool root = namingContext.IsEmpty();
    const ZTString base = namingContext;
    PWCHAR attributes[] = {LdapText(root ? L"namingContexts" : L"objectClass"),
                           LdapText(L"distinguishedName"), nullptr};
    append(root ? L"ldap_search_s[Scope=base, filter=(objectClass=*)] begin ..."
                : L"ldap_search_s[Scope=one_level, filter=(objectClass=*)] begin ...");
    LDAPMessage* found = nullptr;
    const ULONG error = ldap_search_sW(session, LdapText(base), root ? LDAP_SCOPE_BASE : LDAP_SCOPE_ONELEVEL,
                                       LdapText(kFilter), attributes, 0, &found);
    Owned<LDAPMessage, ldap_msgfree> result(found);
    const ZTString errorText = LdapErrorText(error);
    append(LdapResultLine(error));
    if (error != 0)
    {
        // The server's own text, which could hold lines of its own.
        const std::wstring shown = text::SafeToShow(base.AsView());
        append(_StrFormat(L"LDAP:GetChildNodes failed with {0:d}, {1:s} at [{2:s}]\r\n",
                          {error, errorText, shown.c_str()}));
        return;
    }
    const int objects = VisitEntries(session, found, root, namingContext);
    result.reset(); // before the append, which serves messages
    append(_StrFormat(L"Got {0:d} objects back\r\n", {objects}));
}

} // namespace

LDAPAttributes GetEntryAttributes(LDAP* session, LDAPMessage* entry)
{
    LDAPAttributes attributes;
    BerElement* position = nullptr;
    for (PWCHAR name = ldap_first_attributeW(session, entry, &position); name != nullptr;
         name = ldap_next_attributeW(session, entry, position))
    {
        std::vector<ZTString> values = ReadValues(session, entry, name);
        ZTString key(name);
        key.MakeLower();
        attributes[key] = std::move(values);
        ldap_memfreeW(name);
    }
    ber_free(position, 0);
    return attributes;
}

void WalkLdapTree(LDAP* session, const LdapConsole& append)
{
    ZTString namingContext;
    for (int pass = 0; pass < kPasses; ++pass)
        Search(session, namingContext, append);
}
