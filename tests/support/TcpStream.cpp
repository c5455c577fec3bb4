// SPDX-License-Identifier: MIT
#include "tests/support/TcpStream.h"

#include "NativeSocket.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace
{

bool WaitReadable(std::intptr_t socket)
{
    fd_set waiting;
    FD_ZERO(&waiting);
    FD_SET(Native(socket), &waiting);
    timeval limit{0, 20000};
    return select(SelectLimit(socket), &waiting, nullptr, nullptr, &limit) == 1;
}

sockaddr_in Loopback(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

TcpStream::~TcpStream()
{
    CloseSocket(mSocket);
}

std::unique_ptr<TcpStream> TcpStream::Connect(std::uint16_t port)
{
    const std::intptr_t raw = NewSocket();
    auto stream = std::make_unique<TcpStream>(raw);
    const sockaddr_in address = Loopback(port);
    if (connect(Native(raw), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return nullptr;
    return stream;
}

int TcpStream::Receive(char* buffer, int capacity)
{
    if (!WaitReadable(mSocket))
        return -1;
    return std::max(0, static_cast<int>(recv(Native(mSocket), buffer, static_cast<Length>(capacity), 0)));
}

bool TcpStream::Send(std::string_view bytes)
{
    while (!bytes.empty())
    {
        const auto sent = send(Native(mSocket), bytes.data(), static_cast<Length>(bytes.size()), kSendFlags);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

void TcpStream::Reset()
{
    const linger immediate{1, 0};
    setsockopt(Native(mSocket), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&immediate),
               sizeof immediate);
}

TcpListener::TcpListener(std::uint16_t port) : mSocket(NewSocket())
{
    AllowReuse(mSocket);
    sockaddr_in address = Loopback(port);
    AddressLength length = sizeof address;
    if (bind(Native(mSocket), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(Native(mSocket), 16) != 0 ||
        getsockname(Native(mSocket), reinterpret_cast<sockaddr*>(&address), &length) != 0)
    {
        std::fprintf(stderr, "cannot listen on port %u\n", static_cast<unsigned>(port));
        std::abort();
    }
    mPort = ntohs(address.sin_port);
}

TcpListener::~TcpListener()
{
    CloseSocket(mSocket);
}

std::unique_ptr<TcpStream> TcpListener::Accept()
{
    if (!WaitReadable(mSocket))
        return nullptr;
    const auto socket = accept(Native(mSocket), nullptr, nullptr);
    return socket == kNoSocket ? nullptr : std::make_unique<TcpStream>(static_cast<std::intptr_t>(socket));
}
