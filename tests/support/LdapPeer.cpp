// SPDX-License-Identifier: MIT
#include "tests/support/LdapPeer.h"

#include <algorithm>
#include <cstdlib>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

constexpr unsigned char kSequence = 0x30;
constexpr unsigned char kSet = 0x31;
constexpr unsigned char kInteger = 0x02;
constexpr unsigned char kOctets = 0x04;
constexpr unsigned char kEnumerated = 0x0a;
constexpr unsigned char kSearchEntry = 0x64;

std::string BerElementOf(unsigned char tag, const std::string& content)
{
    std::string bytes(1, static_cast<char>(tag));
    if (content.size() < 0x80)
        return bytes + static_cast<char>(content.size()) + content;
    bytes += '\x84';
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(content.size() >> shift & 0xff);
    return bytes + content;
}

std::string BerText(const std::string& text)
{
    return BerElementOf(kOctets, text);
}

bool LdapPeer::Connection::ReadRequest()
{
    // Our clients write a request with one call, and wait for the answer.
    std::string bytes(1U << 16U, '\0');
    const ssize_t got = recv(mSocket, bytes.data(), bytes.size(), 0);
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    if (bytes.empty())
        return false;
    // 30 LL 02 01 NN ..., or 30 8x LL.. 02 01 NN ...
    const auto length = static_cast<unsigned char>(bytes[1]);
    mRequest = bytes.substr(length < 0x80 ? 2 : 2 + (length & 0x7fU));
    mNumber = static_cast<std::uint8_t>(mRequest.at(2));
    return true;
}

bool LdapPeer::Connection::Send(const std::string& bytes) const
{
    return send(mSocket, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

std::string LdapPeer::Connection::Message(const std::string& operation) const
{
    return BerElementOf(kSequence,
                        BerElementOf(kInteger, std::string(1, static_cast<char>(mNumber))) + operation);
}

std::string LdapPeer::Connection::Result(unsigned char tag, unsigned char code, const std::string& text,
                                         const std::string& more)
{
    return BerElementOf(tag, BerElementOf(kEnumerated, std::string(1, static_cast<char>(code))) +
                                 BerText("") + BerText(text) + more);
}

std::string LdapPeer::Connection::Entry(const std::string& name, const std::vector<Attribute>& attributes)
{
    std::string list;
    for (const auto& [attribute, values] : attributes)
    {
        std::string set;
        for (const std::string& value : values)
            set += BerText(value);
        list += BerElementOf(kSequence, BerText(attribute) + BerElementOf(kSet, set));
    }
    return BerElementOf(kSearchEntry, BerText(name) + BerElementOf(kSequence, list));
}

bool LdapPeer::Connection::AcceptBind()
{
    if (!ReadRequest())
        return false;
    SendMessage(Result(0x61, 0));
    return true;
}

void LdapPeer::Connection::EndByReset() const
{
    const linger unsent{1, 0};
    setsockopt(mSocket, SOL_SOCKET, SO_LINGER, &unsent, sizeof(unsent));
}

Script Answering(const Script& answer)
{
    return [answer](Connection& peer)
    {
        peer.ReadRequest();
        answer(peer);
        peer.ReadRequest();
    };
}

Script Answering(const std::string& operation)
{
    return Answering([=](Connection& peer) { peer.SendMessage(operation); });
}

LdapPeer::LdapPeer(std::function<void(Connection&)> script)
    : mListener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    if (bind(mListener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(mListener, 1) != 0 ||
        getsockname(mListener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        std::abort();
    mPort = ntohs(address.sin_port);
    mThread = std::thread(
        [listener = mListener, script = std::move(script)]
        {
            const int client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
            if (client < 0)
                return;
            Connection connection(client);
            script(connection);
            close(client);
        });
}

LdapPeer::~LdapPeer()
{
    shutdown(mListener, SHUT_RDWR);
    mThread.join();
    close(mListener);
}
