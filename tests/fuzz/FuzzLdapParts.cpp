// SPDX-License-Identifier: MIT
// What the LDAP client parses by itself before a session begins: host lists.
#include "platform/net/LdapHost.h"
#include "tests/fuzz/Require.h"

static void Fuzz(std::string_view input)
{
    std::vector<platform::LdapHost> hosts;
    static_cast<void>(platform::ParseHosts(input, 389, hosts));
    for (const platform::LdapHost& host : hosts)
        Require(host.port != 0 && host.name.find(' ') == std::string::npos);
}
