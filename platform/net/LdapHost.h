// SPDX-License-Identifier: MIT
// Where an LDAP server may be: the hosts of a session and the way to a connected socket.
#pragma once

#include "platform/net/LdapFault.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using Deadline = std::chrono::steady_clock::time_point;

struct LdapHost
{
    std::string name; // as typed, without brackets; letters beyond ASCII as certificates bear them (xn--...)
    std::uint16_t port = 0;

    bool operator==(const LdapHost&) const = default;
};

// The hosts of a list that is parted by blanks; `port` is for those that name none. Nothing when a port is
// no number from 1 to 65535 or a bracket stands alone.
std::optional<std::vector<LdapHost>> ParseHosts(std::string_view text, std::uint32_t port);

// True for an IPv4 or IPv6 address, with or without a zone.
bool IsAddress(const std::string& name);

// Gives a connected socket that does not block, or the fault of the last address that was tried. Every
// address of the name gets its turn: one that does not answer leaves the others their share of the time.
LdapFault ConnectTo(const LdapHost& host, Deadline deadline, int& socket);

// Waits until the socket can be read or written (POLLIN, POLLOUT). False when time runs out.
bool WaitForSocket(int socket, short events, Deadline deadline);
