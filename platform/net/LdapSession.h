// SPDX-License-Identifier: MIT
// One session with a directory server, on OpenLDAP's library. Every call ends: by its answer, by a fault, or
// by its time. A session that has lost its server stays lost; nothing is connected a second time.
#pragma once

#include "platform/net/LdapChannel.h"
#include "platform/net/LdapResult.h"
#include "platform/net/LdapText.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

// Tags that OpenLDAP's header and ours have in common.
struct ldap;
struct ldapmsg;
class GssContext;
class GssLayer;
class LdapMessageLayer;

// Who binds, in UTF-8; the only credentials that a bind ever uses.
struct LdapIdentity
{
    std::string user;
    std::string domain;
    Secret password;
};

enum class GssMethod
{
    Ntlm,
    Negotiate
};

class LdapSession
{
public:
    LdapSession(std::vector<LdapHost> hosts, bool tls);
    ~LdapSession();
    LdapSession(const LdapSession&) = delete;
    LdapSession& operator=(const LdapSession&) = delete;

    void SetKeepAlive(bool on) { mKeepAlive = on; }
    // How long a search may take, for the server and for us.
    void SetTimeLimit(std::chrono::seconds limit) { mTimeLimit = limit; }

    LdapFault Connect(std::chrono::microseconds limit);

    LdapFault BindSimple(const std::string& name, const Secret& password);
    LdapFault BindDigest(const LdapIdentity& identity);
    LdapFault BindGss(const LdapIdentity& identity, GssMethod method);

    // The attributes end with a null. The result is empty when the search failed.
    LdapFault Search(const std::string& base, int scope, const std::string& filter,
                     const char* const* attributes, bool namesOnly, LdapResult& result);

private:
    struct FreeMessage
    {
        void operator()(ldapmsg* message) const;
    };
    using Message = std::unique_ptr<ldapmsg, FreeMessage>;

    // What a server tells of itself to everybody.
    struct ServerTraits
    {
        std::vector<std::string> mechanisms;
        std::string realm; // of Kerberos
    };

    LdapFault ConnectTo(const LdapHost& host, Deadline deadline);
    LdapFault Ready() const;
    // The next message that answers a request, or why there is none. When it has not come yet, more are let
    // come for so long.
    LdapFault Await(int request, Deadline deadline, Message& answer,
                    std::chrono::microseconds pause = std::chrono::microseconds(0));
    LdapFault AwaitBind(int request, Deadline deadline, Message& answer);
    // The result that an answer bears, with the server's words.
    LdapFault ResultOf(ldapmsg* answer) const;
    // The fault behind a call of the library that failed with `code`.
    LdapFault LibraryFault(int code);
    LdapFault SearchUntil(Deadline deadline, const std::string& base, int scope, const std::string& filter,
                          const char* const* attributes, bool namesOnly, LdapResult& result);
    // Keeps what the caller of a search may ask for of one of its messages.
    void Keep(ldapmsg* message, LdapResult& result) const;
    LdapFault ReadTraits(Deadline deadline, ServerTraits& traits);
    LdapFault ExchangeGss(std::unique_ptr<GssContext> context, const char* mechanism, Deadline deadline);

    std::vector<LdapHost> mHosts;
    bool mTls;
    bool mKeepAlive = false;
    std::chrono::seconds mTimeLimit;
    std::string mHost; // the one that answered, as typed
    std::unique_ptr<GssLayer> mGssLayer;
    std::unique_ptr<LdapMessageLayer> mMessages;
    std::unique_ptr<LdapChannel> mChannel;
    ldap* mHandle = nullptr;
    std::optional<LdapFault> mLost;
};
