// SPDX-License-Identifier: MIT
#include "platform/net/LdapSession.h"

#include "base/RunWithin.h"
#include "platform/net/GssLayer.h"
#include "platform/net/LdapChannel.h"
#include "platform/net/LdapGss.h"
#include "platform/net/LdapMessageLayer.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <thread>
#include <utility>

#include <openldap.h>
#include <resolv.h>
#include <sasl/sasl.h>

namespace platform
{

namespace
{

using std::chrono::microseconds;
using std::chrono::seconds;

// How long a bind may take altogether, and a search for which no limit was set.
constexpr seconds kCallLimit{15};
// What is left to the server's own verdict when a search takes too long.
constexpr seconds kGrace{1};
// The part of a bind's time after which NTLM is tried instead of waiting for a ticket.
constexpr seconds kTicketLimit{7};

// Where a search gives more messages than a few, more of them are let come before the next is waited for: to
// wake up for each costs the server, too, more time than to send it.
constexpr int kFewMessages = 32;
constexpr microseconds kPause{1000};

// In bytes: what an answer and the texts that are handed out of one of its entries may take together, what
// each text takes beside its characters, with what a caller keeps of it, and the longest text.
constexpr std::size_t kMostMemory = 80U << 20U;
constexpr std::size_t kTextOverhead = 128;
constexpr std::size_t kLongestText = 1U << 20U;

constexpr const char* kSpnegoName = "GSS-SPNEGO";
constexpr const char* kNtlmName = "NTLM";

// The libraries begin with a look-up of this machine's own name, which nothing here needs and a dead name
// server holds up for as long as the system waits for it: they begin on a thread that asks no name server.
// The next thread takes over the C library's state of this one, so the servers are put back.
template <typename Call>
void WithoutNameServers(Call call)
{
    std::thread(
        [call]
        {
            res_init();
            const int servers = std::exchange(_res.nscount, 0);
            call();
            _res.nscount = servers;
        })
        .join();
}

void PrepareLibrary()
{
    static const bool prepared = []
    {
        WithoutNameServers(
            []
            {
                int version = 0;
                ldap_get_option(nullptr, LDAP_OPT_PROTOCOL_VERSION, &version);
            });
        return true;
    }();
    static_cast<void>(prepared);
}

// The host as certificates and tickets know it: without the dot that ends a whole name of DNS.
LdapHost WithoutFinalDot(LdapHost host)
{
    if (host.name.size() > 1 && host.name.ends_with('.'))
        host.name.pop_back();
    return host;
}

// The host as a URL holds it.
std::string UrlOf(const LdapHost& host)
{
    std::string url;
    for (const char character : host.name)
    {
        constexpr char kDigits[] = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) || std::strchr("-._:", character) != nullptr)
            url += character;
        else
            (url += '%').append({kDigits[byte >> 4], kDigits[byte & 15]});
    }
    if (host.name.find(':') != std::string::npos)
        url = "[" + url + "]";
    return "ldap://" + url + ":" + std::to_string(host.port);
}

std::string TakeText(char* text)
{
    std::string result = text != nullptr ? text : "";
    ldap_memfree(text);
    return result;
}

std::string DiagnosticOf(LDAP* handle)
{
    char* text = nullptr;
    ldap_get_option(handle, LDAP_OPT_DIAGNOSTIC_MESSAGE, &text);
    return TakeText(text);
}

// Answers the questions of the DIGEST-MD5 mechanism; the texts outlive the bind.
int AnswerDigest(LDAP*, unsigned, void* defaults, void* questions)
{
    const LdapIdentity& identity = *static_cast<const LdapIdentity*>(defaults);
    for (auto* question = static_cast<sasl_interact_t*>(questions); question->id != SASL_CB_LIST_END;
         ++question)
    {
        const char* answer = "";
        switch (question->id)
        {
        case SASL_CB_AUTHNAME:
            answer = identity.user.c_str();
            break;
        case SASL_CB_PASS:
            answer = identity.password.Text().c_str();
            break;
        case SASL_CB_GETREALM:
            answer = identity.domain.empty() && question->defresult != nullptr ? question->defresult
                                                                               : identity.domain.c_str();
            break;
        default: // on whose behalf: one's own
            break;
        }
        question->result = answer;
        question->len = static_cast<unsigned>(std::strlen(answer));
    }
    return LDAP_SUCCESS;
}

} // namespace

void LdapSession::FreeMessages(ldapmsg* messages)
{
    ldap_msgfree(messages);
}

LdapSession::LdapSession(std::vector<LdapHost> hosts, bool tls)
    : mHosts(std::move(hosts)), mTls(tls), mTimeLimit(kCallLimit)
{
}

LdapSession::~LdapSession()
{
    if (mHandle == nullptr)
        return;
    mChannel->SetDeadline(Clock::now());
    ldap_unbind_ext(mHandle, nullptr, nullptr);
}

LdapFault LdapSession::Connect(microseconds limit)
{
    LdapFault fault;
    const Deadline deadline = Clock::now() + limit;
    auto waiting = static_cast<long>(mHosts.size());
    for (const LdapHost& host : mHosts)
    {
        LdapFault said = ConnectTo(host, EndOfTurn(deadline, waiting--));
        if (!said)
            return {};
        KeepMoreTelling(fault, std::move(said));
    }
    return fault;
}

LdapFault LdapSession::ConnectTo(const LdapHost& typed, Deadline deadline)
{
    int socket = -1;
    LdapFault fault = platform::ConnectTo(typed, deadline, socket);
    if (fault)
        return fault;
    const LdapHost host = WithoutFinalDot(typed);
    auto channel = std::make_unique<LdapChannel>(socket);
    channel->SetKeepAlive(mKeepAlive);
    if (mTls)
        fault = channel->StartTls(host.name, deadline);
    if (fault)
        return fault;

    PrepareLibrary();
    LDAP* handle = nullptr;
    const int result = ldap_init_fd(socket, LDAP_PROTO_EXT, UrlOf(host).c_str(), &handle);
    if (result != LDAP_SUCCESS)
        return {WindowsCode(result), {}};
    Sockbuf* buffer = nullptr;
    ldap_get_option(handle, LDAP_OPT_SOCKBUF, &buffer);
    channel->Attach(buffer);
    auto messages = std::make_unique<LdapMessageLayer>();
    messages->Attach(buffer);

    // All that a set-up file or the environment could have set for new sessions.
    const int version = LDAP_VERSION3;
    const int never = LDAP_DEREF_NEVER;
    const int noLimit = LDAP_NO_LIMIT;
    const timeval noTimeout = {-1, 0};
    ldap_set_option(handle, LDAP_OPT_PROTOCOL_VERSION, &version);
    ldap_set_option(handle, LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
    ldap_set_option(handle, LDAP_OPT_DEREF, &never);
    ldap_set_option(handle, LDAP_OPT_SIZELIMIT, &noLimit);
    ldap_set_option(handle, LDAP_OPT_TIMELIMIT, &noLimit);
    ldap_set_option(handle, LDAP_OPT_TIMEOUT, &noTimeout);
    ldap_set_option(handle, LDAP_OPT_NETWORK_TIMEOUT, &noTimeout);
    ldap_set_option(handle, LDAP_OPT_RESTART, LDAP_OPT_ON);
    ldap_set_option(handle, LDAP_OPT_X_SASL_NOCANON, LDAP_OPT_ON);
    ldap_set_option(handle, LDAP_OPT_X_SASL_SECPROPS, "none,noanonymous,minssf=0,maxssf=2147483647");
    mHost = host.name;
    mChannel = std::move(channel);
    mMessages = std::move(messages);
    mHandle = handle;
    return {};
}

LdapFault LdapSession::Begin(Deadline deadline)
{
    if (mLost)
        return *mLost;
    if (mHandle == nullptr)
        return {eLdapServerDown, "the session is not connected"};
    mChannel->SetDeadline(deadline);
    mMessages->BeginAnswer();
    return {};
}

LdapFault LdapSession::LibraryFault(int libraryCode)
{
    const std::uint32_t code = WindowsCode(libraryCode);
    if (code == eLdapServerDown)
    {
        mLost = mMessages->Ending() ? mMessages->Ending() : mChannel->Ending();
        if (!*mLost)
            mLost = {eLdapDecodingError, "the server's answer is not an LDAP message"};
        return *mLost;
    }
    return {code, DiagnosticOf(mHandle)};
}

LdapFault LdapSession::Await(int request, int all, Deadline deadline, Messages& answer)
{
    Sockbuf* buffer = nullptr;
    ldap_get_option(mHandle, LDAP_OPT_SOCKBUF, &buffer);
    for (int count = 0; Clock::now() < deadline; ++count)
    {
        timeval now{};
        LDAPMessage* messages = nullptr;
        const int kind = ldap_result(mHandle, request, all, &now, &messages);
        answer.reset(messages);
        if (kind > 0)
            return {};
        if (kind < 0)
        {
            int code = LDAP_SUCCESS;
            ldap_get_option(mHandle, LDAP_OPT_RESULT_CODE, &code);
            mLost = LibraryFault(code);
            return *mLost;
        }
        if (ber_sockbuf_ctrl(buffer, LBER_SB_OPT_DATA_READY, nullptr) > 0)
            continue;
        if (count > kFewMessages)
            std::this_thread::sleep_for(kPause);
        mChannel->WaitForMore();
    }
    ldap_abandon_ext(mHandle, request, nullptr, nullptr);
    ldap_msgdelete(mHandle, request);
    return {eLdapTimeout, "the server gave no complete answer in time"};
}

LdapFault LdapSession::AwaitBind(int request, Deadline deadline, Messages& answer)
{
    LdapFault fault = Await(request, LDAP_MSG_ONE, deadline, answer);
    if (!fault && ldap_msgtype(answer.get()) != LDAP_RES_BIND)
        fault = {eLdapDecodingError, "the server answered another question"};
    return fault;
}

LdapFault LdapSession::ResultOf(ldapmsg* answer) const
{
    return mMessages->ResultOf(ldap_msgid(answer));
}

LdapFault LdapSession::BindSimple(const std::string& name, const Secret& password)
{
    const Deadline deadline = Clock::now() + kCallLimit;
    if (LdapFault fault = Begin(deadline))
        return fault;
    berval credentials = {password.Text().size(), const_cast<char*>(password.Text().data())};
    int request = 0;
    const int sent =
        ldap_sasl_bind(mHandle, name.c_str(), LDAP_SASL_SIMPLE, &credentials, nullptr, nullptr, &request);
    if (sent != LDAP_SUCCESS)
        return LibraryFault(sent);
    Messages answer;
    LdapFault fault = AwaitBind(request, deadline, answer);
    return fault ? fault : ResultOf(answer.get());
}

LdapFault LdapSession::BindDigest(const LdapIdentity& identity)
{
    const Deadline deadline = Clock::now() + kCallLimit;
    if (LdapFault fault = Begin(deadline))
        return fault;
    if (identity.user.empty())
        return {eLdapInvalidCredentials, "no user name was given"};
    const char* mechanism = nullptr;
    int request = 0;
    Messages answer;
    int result = LDAP_SUCCESS;
    const auto step = [&]
    {
        result = ldap_sasl_interactive_bind(mHandle, "", "DIGEST-MD5", nullptr, nullptr, LDAP_SASL_QUIET,
                                            AnswerDigest, const_cast<LdapIdentity*>(&identity), answer.get(),
                                            &mechanism, &request);
    };
    WithoutNameServers(step);
    while (true)
    {
        if (result == LDAP_SUCCESS)
            return {};
        const std::uint32_t code = WindowsCode(result);
        if (code == eLdapAuthUnknown && mechanism == nullptr)
            return {code, "DIGEST-MD5 is not installed on this machine (package libsasl2-modules)"};
        if (code != eLdapSaslBindInProgress)
            return LibraryFault(result);
        if (LdapFault fault = AwaitBind(request, deadline, answer))
            return fault;
        LdapFault said = ResultOf(answer.get());
        if (said && said.code != eLdapSaslBindInProgress)
            return said;
        step();
    }
}

LdapFault LdapSession::ReadTraits(Deadline deadline, ServerTraits& traits)
{
    const char* const attributes[] = {"supportedSASLMechanisms", "ldapServiceName", nullptr};
    Messages result;
    LdapFault fault =
        SearchUntil(deadline, "", LDAP_SCOPE_BASE, "(objectClass=*)", attributes, false, result);
    if (result == nullptr)
        return fault;
    berelement* position = nullptr;
    std::string name;
    std::vector<std::string_view> values;
    for (bool has = FirstAttribute(result.get(), position, name); has;
         has = NextAttribute(result.get(), position, name))
    {
        if (!Values(result.get(), name, values) || values.empty())
            continue;
        if (strcasecmp(name.c_str(), attributes[0]) == 0)
            traits.knowsNtlm = std::ranges::find(values, kNtlmName) != values.end();
        else if (strcasecmp(name.c_str(), attributes[1]) == 0) // "example.com:server$@EXAMPLE.COM"
            traits.realm = values.back().substr(values.back().rfind('@') + 1);
    }
    FreePosition(position);
    return fault;
}

std::unique_ptr<GssContext> LdapSession::FindTicket(const LdapIdentity& identity,
                                                    const std::string& serverRealm, Deadline deadline,
                                                    LdapFault& fault) const
{
    struct Found
    {
        std::vector<KerberosUser> users;
        std::string fault = "no realm is known for this server";
    };
    std::optional<Found> found = RunWithin(deadline,
                                           [=, host = mHost]
                                           {
                                               Found made;
                                               made.users =
                                                   KerberosUsersOf(identity, host, serverRealm, made.fault);
                                               return made;
                                           });
    if (!found)
        found = {{}, "the ticket server gave no answer in time"};
    if (found->users.empty())
        fault = {eLdapLocalError, "Kerberos: " + found->fault};
    auto waiting = static_cast<long>(found->users.size());
    for (const KerberosUser& user : found->users)
    {
        LdapFault said;
        std::unique_ptr<GssContext> context =
            GssContext::Kerberos(user, identity.password, mHost, EndOfTurn(deadline, waiting--), said);
        if (context != nullptr)
            return context;
        fault = {said.code, fault.cause + (fault.cause.empty() ? "Kerberos: " : "; ") + said.cause};
        if (said.code == eLdapInvalidCredentials)
            break;
    }
    return nullptr;
}

LdapFault LdapSession::BindGss(const LdapIdentity& identity, GssMethod method)
{
    const Deadline deadline = Clock::now() + kCallLimit;
    if (LdapFault fault = Begin(deadline))
        return fault;
    if (identity.user.empty())
        return {eLdapInvalidCredentials, "no user name was given"};
    if (identity.password.IsEmpty())
        return {eLdapInvalidCredentials, "no password was given"};
    ServerTraits traits;
    LdapFault fault = ReadTraits(deadline, traits);
    if (mLost || fault.code == eLdapTimeout)
        return fault;

    LdapFault noTicket;
    if (method == GssMethod::Negotiate && !IsAddress(mHost))
    {
        auto context =
            FindTicket(identity, traits.realm, std::min(deadline, Clock::now() + kTicketLimit), noTicket);
        if (context != nullptr)
            return ExchangeGss(std::move(context), kSpnegoName, deadline);
        // With NTLM the controller would count a second wrong password, and lock the user out sooner.
        if (noTicket.code == eLdapInvalidCredentials)
            return noTicket;
    }
    // Servers of the Windows kind take NTLM in SPNEGO's place and protect what follows; others that list it
    // by its own name do neither.
    const bool byName = method == GssMethod::Ntlm && traits.realm.empty() && traits.knowsNtlm;
    auto context = GssContext::Ntlm(identity, mHost, !byName, fault);
    if (context != nullptr)
        fault = ExchangeGss(std::move(context), byName ? kNtlmName : kSpnegoName, deadline);
    if (fault && noTicket)
        fault.cause += (fault.cause.empty() ? "" : "; ") + noTicket.cause;
    return fault;
}

LdapFault LdapSession::ExchangeGss(std::unique_ptr<GssContext> context, const char* mechanism,
                                   Deadline deadline)
{
    std::string incoming;
    while (true)
    {
        std::string outgoing;
        if (!context->IsComplete())
        {
            if (LdapFault fault = context->Step(incoming, outgoing))
                return fault;
        }
        berval credentials = {outgoing.size(), outgoing.data()};
        int request = 0;
        const int sent = ldap_sasl_bind(mHandle, "", mechanism, &credentials, nullptr, nullptr, &request);
        if (sent != LDAP_SUCCESS)
            return LibraryFault(sent);
        Messages answer;
        if (LdapFault fault = AwaitBind(request, deadline, answer))
            return fault;
        LdapFault result = ResultOf(answer.get());
        if (result && result.code != eLdapSaslBindInProgress)
            return result;
        berval* token = nullptr;
        ldap_parse_sasl_bind_result(mHandle, answer.get(), &token, 0);
        incoming = token != nullptr ? std::string(token->bv_val, token->bv_len) : std::string();
        ber_bvfree(token);
        if (!result)
            break;
    }
    // The server's last token proves that it is the right one.
    std::string unused;
    if (!context->IsComplete())
    {
        if (LdapFault fault = context->Step(incoming, unused))
            return fault;
    }
    if (!context->IsComplete())
        return {eLdapLocalError, "the server ended the log-on too early"};
    if (context->Protects())
    {
        Sockbuf* buffer = nullptr;
        ldap_get_option(mHandle, LDAP_OPT_SOCKBUF, &buffer);
        mGssLayer = std::make_unique<GssLayer>(std::move(context));
        mGssLayer->Attach(buffer);
    }
    return {};
}

LdapFault LdapSession::Search(const std::string& base, int scope, const std::string& filter,
                              const char* const* attributes, bool namesOnly, Messages& result)
{
    const Deadline deadline = Clock::now() + mTimeLimit + kGrace;
    if (LdapFault fault = Begin(deadline))
        return fault;
    return SearchUntil(deadline, base, scope, filter, attributes, namesOnly, result);
}

LdapFault LdapSession::SearchUntil(Deadline deadline, const std::string& base, int scope,
                                   const std::string& filter, const char* const* attributes, bool namesOnly,
                                   Messages& result)
{
    const auto serverLimit = std::chrono::ceil<seconds>(deadline - Clock::now() - kGrace).count();
    timeval limit = {std::max<long>(1, serverLimit), 0};
    int request = 0;
    const int sent =
        ldap_search_ext(mHandle, base.c_str(), scope, filter.c_str(), const_cast<char**>(attributes),
                        namesOnly ? 1 : 0, nullptr, nullptr, &limit, LDAP_NO_LIMIT, &request);
    if (sent != LDAP_SUCCESS)
        return LibraryFault(sent);
    Messages found;
    LdapFault fault = Await(request, LDAP_MSG_ALL, deadline, found);
    if (!fault)
        fault = ResultOf(found.get());
    if (!fault)
        result = std::move(found);
    return fault;
}

ldapmsg* LdapSession::NextEntry(ldapmsg* entry) const
{
    return ldap_next_entry(mHandle, entry);
}

bool LdapSession::FirstAttribute(ldapmsg* entry, berelement*& position, std::string& name)
{
    berval entryName{};
    mEntry = entry;
    mGiven = 0;
    return ldap_msgtype(entry) == LDAP_RES_SEARCH_ENTRY &&
           ldap_get_dn_ber(mHandle, entry, &position, &entryName) == LDAP_SUCCESS &&
           NextAttribute(entry, position, name);
}

bool LdapSession::NextAttribute(ldapmsg* entry, berelement* position, std::string& name)
{
    berval text{};
    berval set{};
    if (entry != mEntry || position == nullptr || ber_scanf(position, "{m", &text) == LBER_ERROR)
        return false;
    mValues = ber_scanf(position, "m", &set) != LBER_ERROR ? ViewOf(set) : std::string_view();
    mName = name = ViewOf(text);
    return Give(mName);
}

bool LdapSession::Values(ldapmsg* entry, std::string_view name, std::vector<std::string_view>& values)
{
    values.clear();
    if (entry != mEntry || name != mName || mValues.data() == nullptr)
        return false;
    BerElement* const set = mReader.Begin(mValues);
    for (berval value{}; ber_skip_element(set, &value) != LBER_DEFAULT;)
    {
        if (!Give(ViewOf(value)))
            return false;
        values.push_back(ViewOf(value));
    }
    return true;
}

bool LdapSession::Give(std::string_view text)
{
    mGiven += text.size() * sizeof(wchar_t) + kTextOverhead;
    return text.size() <= kLongestText && mGiven + mMessages->Taken() <= kMostMemory;
}

void LdapSession::FreePosition(berelement* position, int freeBuffer)
{
    ber_free(position, freeBuffer);
}

} // namespace platform
