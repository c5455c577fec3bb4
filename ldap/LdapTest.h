// SPDX-License-Identifier: MIT
// The test of a directory server: connect, bind, walk, each call announced before it is made and followed by
// its result. A failed step goes on to the next method; the verdict is the text. Everything runs on the
// calling thread, which each call blocks until it returns.
#pragma once

#include "ldap/LDAPCreds.h"

#include <winldap.h>

#include <functional>
#include <map>
#include <vector>

// Takes one piece of the console's text: a line, or a part of one.
using LdapConsole = std::function<void(const wchar_t* text)>;

// Tries what the dialog was told, each attempt with a session of its own, until a bind succeeds; `walk` then
// gets the bound session, which is closed afterwards.
void TestLdapServer(const LDAPCreds& creds, const LdapConsole& append,
                    const std::function<void(LDAP*)>& walk);

// Reads the root entry and then one level below the last naming context that it names. A search that fails
// is told and does not end the walk.
void WalkLdapTree(LDAP* session, const LdapConsole& append);

// An entry's attributes: the name in lower case, the values in the server's order. An attribute whose values
// cannot be read has none.
using LDAPAttributes = std::map<ZTString, std::vector<ZTString>>;
LDAPAttributes GetEntryAttributes(LDAP* session, LDAPMessage* entry);
