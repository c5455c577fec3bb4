// SPDX-License-Identifier: MIT
#define NTDDI_VERSION 0x0A000003 // declares TCP_INFO_v0
#include "libraries/ipworks/Sockets.h"

#include <winsock2.h>

#include <mstcpip.h>
#include <ws2tcpip.h>

#include <algorithm>

namespace
{

// What has come, of `events` and of what is told unasked; 0 when nothing has.
short Poll(SOCKET socket, short events, std::chrono::milliseconds limit)
{
    WSAPOLLFD one{socket, events, 0};
    WSAPoll(&one, 1, std::max(0, static_cast<int>(limit.count())));
    return one.revents;
}

} // namespace

void CallWithoutBrokenPipes(const std::function<void()>& call)
{
    call();
}

bool PeerAddress(curl_socket_t socket, std::string& address)
{
    sockaddr_storage peer{};
    socklen_t length = sizeof peer;
    if (getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &length) != 0)
        return WSAGetLastError() != WSAENOTCONN;
    char text[NI_MAXHOST];
    if (getnameinfo(reinterpret_cast<sockaddr*>(&peer), length, text, sizeof text, nullptr, 0,
                    NI_NUMERICHOST) == 0)
        address = text;
    return true;
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
    return Poll(socket, POLLRDNORM, limit) != 0;
}

bool IsBroken(curl_socket_t socket, std::chrono::milliseconds limit)
{
    // One event has to be asked for.
    return (Poll(socket, POLLRDBAND, limit) & (POLLERR | POLLHUP | POLLNVAL)) != 0;
}

int Receive(curl_socket_t socket, char* buffer, int capacity)
{
    const int length = recv(socket, buffer, capacity, 0);
    if (length > 0)
        return length;
    return length < 0 && WSAGetLastError() == WSAEWOULDBLOCK ? 0 : -1;
}

// The copy that is linked in is mended: packaging/windows/curl-active-tls.patch.
bool LeavesDirectDataReadable()
{
    return false;
}

int CloseSocket(curl_socket_t socket)
{
    return closesocket(socket);
}
