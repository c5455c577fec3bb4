// SPDX-License-Identifier: MIT
#include "platform/net/LdapAttributes.h"

#include <ldap.h>

namespace
{

// The library takes any message for an entry and reads on.
bool IsEntry(LDAPMessage* message)
{
    return message && ldap_msgtype(message) == LDAP_RES_SEARCH_ENTRY;
}

} // namespace

void FreeLibraryText::operator()(char* text) const
{
    ldap_memfree(text);
}

ldapmsg* NextEntry(ldap* handle, ldapmsg* message)
{
    return message ? ldap_next_entry(handle, message) : nullptr;
}

void FreeResult(ldapmsg* result)
{
    ldap_msgfree(result);
}

LibraryText FirstAttribute(ldap* handle, ldapmsg* message, berelement*& position)
{
    position = nullptr;
    return LibraryText(IsEntry(message) ? ldap_first_attribute(handle, message, &position) : nullptr);
}

LibraryText NextAttribute(ldap* handle, ldapmsg* message, berelement* position)
{
    return LibraryText(position ? ldap_next_attribute(handle, message, position) : nullptr);
}

void FreePosition(berelement* position)
{
    // The buffer under the position is the message's.
    ber_free(position, 0);
}

std::optional<std::vector<std::string>> ValuesOf(ldap* handle, ldapmsg* message, const std::string& attribute)
{
    berval** values = IsEntry(message) ? ldap_get_values_len(handle, message, attribute.c_str()) : nullptr;
    if (!values)
        return std::nullopt;
    std::vector<std::string> texts;
    for (berval** value = values; *value; ++value)
        texts.emplace_back((*value)->bv_val, (*value)->bv_len);
    ldap_value_free_len(values);
    return texts;
}
