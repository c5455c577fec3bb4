// SPDX-License-Identifier: MIT
// The parts of the LDAP client that parse: host lists, and users for Kerberos.
#include "platform/net/LdapGss.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace platform;

TEST(LdapHosts, AreReadFromAListOfNamesAndAddresses)
{
    const std::pair<const char*, std::vector<LdapHost>> kCases[] = {
        {"  ", {{"", 389}}},
        {" dc1  dc2:390 ", {{"dc1", 389}, {"dc2", 390}}},
        {"10.0.0.1:636", {{"10.0.0.1", 636}}},
        {"::1", {{"::1", 389}}}, // more than one colon: an address, not a port
        {"[::1]", {{"::1", 389}}},
        {"Bücher.example:636", {{"xn--bcher-kva.example", 636}}},
        {"straße.example", {{"xn--strae-oqa.example", 389}}},
        {"a\xcc\xb8..example", {{"a\xcc\xb8..example", 389}}}, // no name of DNS
        {"\xcd\xba.example", {{"\xcd\xba.example", 389}}},     // would become one with a blank
        {"[fe80::1%eth0]:65535", {{"fe80::1%eth0", 65535}}},
    };
    for (const auto& [text, expected] : kCases)
    {
        std::vector<LdapHost> hosts;
        EXPECT_FALSE(ParseHosts(text, 389, hosts)) << text;
        EXPECT_EQ(hosts, expected) << text;
    }
    const auto refusal = [](const char* text, std::uint32_t port)
    {
        std::vector<LdapHost> hosts;
        const LdapFault fault = ParseHosts(text, port, hosts);
        return fault.code == 0x59 ? fault.cause : "none";
    };
    for (const char* text : {"dc1:", "dc1:0", "dc1:65536", "dc1:12x", "dc1:-1", "[::1", "[::1]389", "[::1]:"})
        EXPECT_EQ(refusal(text, 389), "the port is not a number from 1 to 65535") << text;
    for (const std::uint32_t port : {0U, 65536U})
        EXPECT_EQ(refusal("dc1", port), "the port is not a number from 1 to 65535");
    for (const char* text : {"ldap://dc1", "ldaps://dc1:636"})
        EXPECT_EQ(refusal(text, 389), "the server's name is wanted, not a URL");
}

// Each wrong guess may cost a try of the password.
TEST(KerberosUsers, BelongToTheServersRealmBeforeThoseOfTheMachine)
{
    const TestFolder folder;
    folder.Write("krb5.conf",
                 "[libdefaults]\ndefault_realm = OWN\n[domain_realm]\nmapped.example = MAPPED\n");
    setenv("KRB5_CONFIG", (folder.Path() / "krb5.conf").c_str(), 1);
    // The identity, the host, the server's realm, the users.
    const std::tuple<LdapIdentity, const char*, const char*, const char*> kCases[] = {
        {{"bob", "", {}}, "dc", "SERVER", "bob@SERVER bob@OWN"},
        {{"bob", "", {}}, "mapped.example", "SERVER", "bob@SERVER bob@MAPPED bob@OWN"},
        {{"bob", "", {}}, "dc", "", "bob@OWN"},
        {{"bob", "", {}}, "dc", "OWN", "bob@OWN"},
        {{"bob", "SHORT", {}}, "dc", "SERVER", "bob@SERVER bob@OWN"},
        {{"bob", "own.example", {}}, "dc", "SERVER", "bob@OWN.EXAMPLE"},
        {{"bob@own.example", "", {}}, "dc", "OWN.EXAMPLE", "bob@OWN.EXAMPLE"},
        {{"b/b@own.example", "", {}}, "dc", "SERVER", "<b\\/b@own.example@SERVER> b\\/b@OWN.EXAMPLE"},
    };
    for (const auto& [identity, host, serverRealm, expected] : kCases)
    {
        std::string users;
        std::string fault;
        for (const auto& [name, isEnterprise] : KerberosUsersOf(identity, host, serverRealm, fault))
            users += (users.empty() ? "" : " ") + (isEnterprise ? "<" + name + ">" : name);
        EXPECT_EQ(users, expected) << identity.domain << " at " << host;
        EXPECT_EQ(fault, "");
    }
}
