// SPDX-License-Identifier: MIT
// Loopback connections for scripted servers, alike on both systems.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// One end of a connection. Calls block for a short while only, so that a server can look whether it is to
// end.
class Stream
{
public:
    virtual ~Stream() = default;

    // Bytes received, 0 when the other side has closed, -1 when nothing came for 20 ms.
    virtual int Receive(char* buffer, int capacity) = 0;
    virtual bool Send(std::string_view bytes) = 0;
    // Ends the connection so that the other side sees an error instead of an orderly end.
    virtual void Reset() = 0;
};

class TcpStream : public Stream
{
public:
    // Owns the system's socket.
    explicit TcpStream(std::intptr_t socket) : mSocket(socket) {}
    ~TcpStream() override;
    TcpStream(const TcpStream&) = delete;
    TcpStream& operator=(const TcpStream&) = delete;

    // Null when nobody listens there.
    static std::unique_ptr<TcpStream> Connect(std::uint16_t port);

    int Receive(char* buffer, int capacity) override;
    bool Send(std::string_view bytes) override;
    void Reset() override;

    std::intptr_t Socket() const { return mSocket; }

private:
    std::intptr_t mSocket;
};

class TcpListener
{
public:
    // 127.0.0.1; port 0 takes a free one. A port that cannot be had ends the test program with a message.
    explicit TcpListener(std::uint16_t port);
    ~TcpListener();
    TcpListener(const TcpListener&) = delete;
    TcpListener& operator=(const TcpListener&) = delete;

    std::uint16_t Port() const { return mPort; }
    // The next connection; null when none came for 20 ms.
    std::unique_ptr<TcpStream> Accept();

private:
    std::intptr_t mSocket;
    std::uint16_t mPort = 0;
};
