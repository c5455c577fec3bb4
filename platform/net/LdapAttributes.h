// SPDX-License-Identifier: MIT
// What stands in the messages of a search result, which is OpenLDAP's chain of messages. Texts are UTF-8.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct ldap;
struct ldapmsg;
struct berelement;

struct FreeLibraryText
{
    void operator()(char* text) const;
};
using LibraryText = std::unique_ptr<char, FreeLibraryText>;

ldapmsg* NextEntry(ldap* handle, ldapmsg* message);
void FreeResult(ldapmsg* result);

// The name of a message's first attribute, and a position for the next ones, which is the caller's (see
// FreePosition); both null when the message is no entry or has none.
LibraryText FirstAttribute(ldap* handle, ldapmsg* message, berelement*& position);
LibraryText NextAttribute(ldap* handle, ldapmsg* message, berelement* position);
void FreePosition(berelement* position);

// The attribute's values in the server's order; nothing when they cannot be read.
std::optional<std::vector<std::string>> ValuesOf(ldap* handle, ldapmsg* message,
                                                 const std::string& attribute);
