// SPDX-License-Identifier: MIT
// What the LDAP client parses by itself before a session begins: host lists.
#include "platform/net/LdapHost.h"
#include "tests/fuzz/Require.h"

using namespace platform;

namespace
{

void CheckHosts(std::string_view text)
{
    std::vector<LdapHost> hosts;
    static_cast<void>(ParseHosts(text, 389, hosts));
    for (const LdapHost& host : hosts)
        Require(host.port != 0 && host.name.find(' ') == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = TextOf(data, size);
    CheckHosts(text);
    return 0;
}
