// SPDX-License-Identifier: MIT
// What the two systems name differently in sockets.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>

using Length = std::size_t;
constexpr int kSendFlags = MSG_NOSIGNAL;

inline int Native(std::intptr_t socket)
{
    return static_cast<int>(socket);
}

inline std::intptr_t NewSocket()
{
    return socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

constexpr int kNoSocket = -1;
using AddressLength = socklen_t;

inline void CloseSocket(std::intptr_t socket)
{
    close(Native(socket));
}

inline int SelectLimit(std::intptr_t socket)
{
    return Native(socket) + 1;
}

// A port whose last connections have just ended can be had again.
inline void AllowReuse(std::intptr_t socket)
{
    const int on = 1;
    setsockopt(Native(socket), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}
