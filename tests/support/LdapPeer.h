// SPDX-License-Identifier: MIT
// An LDAP server that does right or wrong as a test's script says: one connection at the loopback.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// Pieces of BER, each ready to be put into another.
std::string BerElementOf(unsigned char tag, const std::string& content);
std::string BerText(const std::string& text);

class LdapPeer
{
public:
    class Connection
    {
    public:
        explicit Connection(int socket) : mSocket(socket) {}

        // Waits for a whole request and remembers its number. False when the client has gone.
        bool ReadRequest();
        const std::string& Request() const { return mRequest; } // the last one's bytes
        // False when the client has gone.
        bool Send(const std::string& bytes) const;

        // Answers to the last request.
        void SendMessage(const std::string& operation) const { Send(Message(operation)); }
        std::string Message(const std::string& operation) const;
        // The result of an operation; tag 0x61 answers a bind, 0x65 ends a search.
        static std::string Result(unsigned char tag, unsigned char code, const std::string& text = {},
                                  const std::string& more = {});
        using Attribute = std::pair<std::string, std::vector<std::string>>;
        static std::string Entry(const std::string& name, const std::vector<Attribute>& attributes);

        // Serves a successful bind and gives up at anything else.
        bool AcceptBind();

        // The end will be a reset, as of a peer that falls over, and not the stream's end.
        void EndByReset() const;

    private:
        int mSocket;
        std::string mRequest;
        std::uint8_t mNumber = 0; // of the last request; our clients do not count further
    };

    // On a free port.
    explicit LdapPeer(std::function<void(Connection&)> script);
    // Waits for the script; the connection is closed when it ends.
    ~LdapPeer();

    unsigned Port() const { return mPort; }

private:
    int mListener;
    unsigned mPort;
    std::thread mThread;
};

using Connection = LdapPeer::Connection;
using Script = std::function<void(Connection&)>;

// Answers the first request in some way, or with one operation, and waits until the client has gone.
Script Answering(const Script& answer);
Script Answering(const std::string& operation);
