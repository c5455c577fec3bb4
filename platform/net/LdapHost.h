// SPDX-License-Identifier: MIT
// Where an LDAP server may be: the hosts of a session and the way to a connected socket.
#pragma once

#include "base/Deadline.h"
#include "platform/net/LdapFault.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform
{

struct LdapHost
{
    std::string name; // as typed, without brackets; letters beyond ASCII as certificates bear them (xn--...)
    std::uint16_t port = 0;

    bool operator==(const LdapHost&) const = default;
};

// Reads a list of hosts that are separated by blanks; `port` is for those that name none. A list without any
// gives one host without a name, to which no connection is made. A parameter error with its cause when a port
// is not a number from 1 to 65535, a bracket stands alone or a URL stands in a name's place.
LdapFault ParseHosts(std::string_view text, std::uint32_t port, std::vector<LdapHost>& hosts);

// True for an IPv4 or IPv6 address, with or without a zone.
bool IsAddress(const std::string& name);

// Gives a connected socket that does not block, or the fault that tells most. Every address of the name gets
// its turn: one that does not answer leaves the others their share of the time, and one to which there is no
// way takes none.
LdapFault ConnectTo(const LdapHost& host, Deadline deadline, int& socket);

// Waits until the socket can be read or written (POLLIN, POLLOUT). False when time runs out.
bool WaitForSocket(int socket, short events, Deadline deadline);

// The system's words for an error as they stand after a colon: without a capital letter in front, unless an
// abbreviation begins with it.
std::string CauseText(std::string text);

} // namespace platform
