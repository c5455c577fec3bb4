// SPDX-License-Identifier: MIT
#include "libraries/ipworks/Sockets.h"

#include <linux/sockios.h>
#include <netdb.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>

namespace
{

bool Poll(int socket, short events, std::chrono::milliseconds limit)
{
    pollfd one{socket, events, 0};
    return poll(&one, 1, std::max(0, static_cast<int>(limit.count()))) > 0;
}

} // namespace

void CallWithoutBrokenPipes(const std::function<void()>& call)
{
    sigset_t pipe;
    sigset_t before;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, &before);
    call();
    if (sigismember(&before, SIGPIPE) == 1)
        return;
    const timespec now{};
    while (sigtimedwait(&pipe, nullptr, &now) > 0)
    {
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

bool PeerAddress(curl_socket_t socket, std::string& address)
{
    sockaddr_storage peer{};
    socklen_t length = sizeof peer;
    if (getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &length) != 0)
        return errno != ENOTCONN;
    char text[NI_MAXHOST];
    if (getnameinfo(reinterpret_cast<sockaddr*>(&peer), length, text, sizeof text, nullptr, 0,
                    NI_NUMERICHOST) == 0)
        address = text;
    return true;
}

int UnacknowledgedBytes(curl_socket_t socket)
{
    int bytes = 0;
    return socket >= 0 && ioctl(socket, SIOCOUTQ, &bytes) == 0 ? bytes : 0;
}

bool IsReadable(curl_socket_t socket, std::chrono::milliseconds limit)
{
    return Poll(socket, POLLIN, limit);
}

bool IsBroken(curl_socket_t socket, std::chrono::milliseconds limit)
{
    return Poll(socket, 0, limit);
}

int Receive(curl_socket_t socket, char* buffer, int capacity)
{
    const ssize_t length = recv(socket, buffer, static_cast<std::size_t>(capacity), MSG_DONTWAIT);
    if (length > 0)
        return static_cast<int>(length);
    return length < 0 && (errno == EAGAIN || errno == EINTR) ? 0 : -1;
}

bool LeavesDirectDataReadable()
{
    const unsigned version = curl_version_info(CURLVERSION_NOW)->version_num;
    return version >= 0x075700 && version < 0x080000;
}

int CloseSocket(curl_socket_t socket)
{
    return close(socket);
}
