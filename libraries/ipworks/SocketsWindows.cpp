// SPDX-License-Identifier: MIT
#define NTDDI_VERSION 0x0A000003 // declares TCP_INFO_v0
#include "libraries/ipworks/Sockets.h"

#include <winsock2.h>

#include <mstcpip.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <cstring>

namespace
{

bool Poll(SOCKET socket, short events, std::chrono::milliseconds limit)
{
    WSAPOLLFD one{socket, events, 0};
    return WSAPoll(&one, 1, std::max(0, static_cast<int>(limit.count()))) > 0;
}

} // namespace

void CallWithoutBrokenPipes(const std::function<void()>& call)
{
    call();
}

bool SamePeer(curl_socket_t left, curl_socket_t right)
{
    sockaddr_storage a{};
    sockaddr_storage b{};
    int aLength = sizeof a;
    int bLength = sizeof b;
    if (getpeername(left, reinterpret_cast<sockaddr*>(&a), &aLength) != 0)
        return WSAGetLastError() == WSAENOTCONN;
    if (getpeername(right, reinterpret_cast<sockaddr*>(&b), &bLength) != 0 || a.ss_family != b.ss_family)
        return false;
    if (a.ss_family == AF_INET)
        return std::memcmp(&reinterpret_cast<sockaddr_in*>(&a)->sin_addr,
                           &reinterpret_cast<sockaddr_in*>(&b)->sin_addr, sizeof(in_addr)) == 0;
    return std::memcmp(&reinterpret_cast<sockaddr_in6*>(&a)->sin6_addr,
                       &reinterpret_cast<sockaddr_in6*>(&b)->sin6_addr, sizeof(in6_addr)) == 0;
}

int UnacknowledgedBytes(curl_socket_t socket)
{
    DWORD version = 0;
    TCP_INFO_v0 info{};
    DWORD length = 0;
    if (socket == CURL_SOCKET_BAD || WSAIoctl(socket, SIO_TCP_INFO, &version, sizeof version, &info,
                                              sizeof info, &length, nullptr, nullptr) != 0)
        return 0;
    return static_cast<int>(info.BytesInFlight);
}

bool IsReadable(curl_socket_t socket, std::chrono::milliseconds limit)
{
    return Poll(socket, POLLRDNORM, limit);
}

bool IsBroken(curl_socket_t socket, std::chrono::milliseconds limit)
{
    return Poll(socket, 0, limit);
}

int Receive(curl_socket_t socket, char* buffer, int capacity)
{
    const int length = recv(socket, buffer, capacity, 0);
    if (length > 0)
        return length;
    return length < 0 && WSAGetLastError() == WSAEWOULDBLOCK ? 0 : -1;
}

int CloseSocket(curl_socket_t socket)
{
    return closesocket(socket);
}
