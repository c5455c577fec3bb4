// SPDX-License-Identifier: MIT
// One session with a directory server, on OpenLDAP's library. Every call ends: by its answer, by a fault, or
// by its time. A session that has lost its server stays lost; nothing is connected a second time.
#pragma once

#include "base/Owned.h"
#include "platform/net/BerReader.h"
#include "platform/net/LdapHost.h"
#include "platform/net/Secret.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Tags that OpenLDAP's header and ours have in common.
struct ldap;
struct ldapmsg;
struct berelement;

namespace platform
{

class GssContext;
class GssLayer;
class LdapChannel;
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

    static void FreeMessages(ldapmsg* messages);
    // A chain of messages as the library keeps it.
    using Messages = Owned<ldapmsg, FreeMessages>;

    // The attributes end with a null. The result is empty when the search failed; else it ends with the
    // message that says so, which is the first one where there is no entry.
    LdapFault Search(const std::string& base, int scope, const std::string& filter,
                     const char* const* attributes, bool namesOnly, Messages& result);
    ldapmsg* NextEntry(ldapmsg* entry) const;

    // The attributes of a message, of which only entries have any. Each of these gives false at the end, and
    // where the rest cannot be read or takes too much memory: a text of more than 1 MB, or more of them than
    // fit into 80 MB beside the answer. `position` is the caller's, who hands it to FreePosition.
    bool FirstAttribute(ldapmsg* entry, berelement*& position, std::string& name);
    bool NextAttribute(ldapmsg* entry, berelement* position, std::string& name);
    static void FreePosition(berelement* position, int freeBuffer = 0); // as ber_free
    // The values of the attribute that was given last, in the server's order; they last as long as their
    // message.
    bool Values(ldapmsg* entry, std::string_view name, std::vector<std::string_view>& values);

private:
    // What a server tells of itself to everybody.
    struct ServerTraits
    {
        bool knowsNtlm = false;
        std::string realm; // of Kerberos
    };

    LdapFault ConnectTo(const LdapHost& typed, Deadline deadline);
    // Before each call that asks the server.
    LdapFault Begin(Deadline deadline);
    // Waits for the first message that answers a request, or for `all` of them.
    LdapFault Await(int request, int all, Deadline deadline, Messages& answer);
    LdapFault AwaitBind(int request, Deadline deadline, Messages& answer);
    // The result that an answer bears, with the server's words.
    LdapFault ResultOf(ldapmsg* answer) const;
    // The fault of a call of the library that failed with `libraryCode`.
    LdapFault LibraryFault(int libraryCode);
    LdapFault SearchUntil(Deadline deadline, const std::string& base, int scope, const std::string& filter,
                          const char* const* attributes, bool namesOnly, Messages& result);
    LdapFault ReadTraits(Deadline deadline, ServerTraits& traits);
    // The first ticket that can be had, or null with all that was said in `fault`.
    std::unique_ptr<GssContext> FindTicket(const LdapIdentity& identity, const std::string& serverRealm,
                                           Deadline deadline, LdapFault& fault) const;
    LdapFault ExchangeGss(std::unique_ptr<GssContext> context, const char* mechanism, Deadline deadline);
    // Counts a text that is handed out; false when the entry has given too much.
    bool Give(std::string_view text);

    std::vector<LdapHost> mHosts;
    bool mTls;
    bool mKeepAlive = false;
    std::chrono::seconds mTimeLimit;
    std::string mHost; // the one that answered, without a final dot
    std::unique_ptr<GssLayer> mGssLayer;
    std::unique_ptr<LdapMessageLayer> mMessages;
    std::unique_ptr<LdapChannel> mChannel;
    ldap* mHandle = nullptr;
    std::optional<LdapFault> mLost;

    BerReader mReader;

    // The attribute that was given last.
    ldapmsg* mEntry = nullptr;
    std::string mName;
    std::string_view mValues;
    std::size_t mGiven = 0; // memory for the texts of mEntry, in bytes
};

} // namespace platform
