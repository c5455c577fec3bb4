// SPDX-License-Identifier: MIT
// What the two systems name differently in sockets.
#pragma once

#include <winsock2.h>

#include <cstdint>

using Length = int;
constexpr int kSendFlags = 0;

inline SOCKET Native(std::intptr_t socket)
{
    return static_cast<SOCKET>(socket);
}

inline std::intptr_t NewSocket()
{
    static const bool started = []
    {
        WSADATA data{};
        return WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    return started ? static_cast<std::intptr_t>(socket(AF_INET, SOCK_STREAM, 0)) : -1;
}

constexpr SOCKET kNoSocket = INVALID_SOCKET;
using AddressLength = int;

inline void CloseSocket(std::intptr_t socket)
{
    closesocket(Native(socket));
}

inline int SelectLimit(std::intptr_t)
{
    return 0;
}

inline void AllowReuse(std::intptr_t) {}
