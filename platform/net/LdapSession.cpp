// SPDX-License-Identifier: MIT
#include "platform/net/LdapSession.h"

#include "platform/net/LdapGss.h"
#include "platform/net/LdapMessageLayer.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>

#include <malloc.h>
#include <openldap.h>
#include <resolv.h>
#include <sasl/sasl.h>

namespace
{

using Clock = std::chrono::steady_clock;
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

constexpr const char* kNoMessage = "the server's answer is no LDAP message";
constexpr const char* kSpnegoName = "GSS-SPNEGO";
constexpr const char* kNtlmName = "NTLM";

// The library's memory holds passwords: whatever it gives back is overwritten.
void WipeAndFree(void* block, void*)
{
    if (block)
        explicit_bzero(block, malloc_usable_size(block));
    std::free(block);
}

void* Allocate(ber_len_t size, void*)
{
    return std::malloc(size);
}

void* AllocateZeroed(ber_len_t count, ber_len_t size, void*)
{
    return std::calloc(count, size);
}

void* Reallocate(void* block, ber_len_t size, void*)
{
    if (block && malloc_usable_size(block) >= size)
        return block;
    void* larger = std::malloc(size);
    if (larger && block)
    {
        std::memcpy(larger, block, malloc_usable_size(block));
        WipeAndFree(block, nullptr);
    }
    return larger;
}

// The library begins with a look-up of this machine's own name, which nothing here needs and a dead name
// server holds up for as long as the system waits for it: it begins on a thread that asks no name server. The
// next thread takes over the C library's state of this one, so the servers are put back.
void BeginLibrary()
{
    res_init();
    const int servers = std::exchange(_res.nscount, 0);
    int version = 0;
    ldap_get_option(nullptr, LDAP_OPT_PROTOCOL_VERSION, &version);
    _res.nscount = servers;
}

void PrepareLibrary()
{
    static const bool prepared = []
    {
        BerMemoryFunctions functions = {Allocate, AllocateZeroed, Reallocate, WipeAndFree};
        ber_set_option(nullptr, LBER_OPT_MEMORY_FNS, &functions);
        std::thread(BeginLibrary).join();
        return true;
    }();
    static_cast<void>(prepared);
}

// The host as a URL holds it.
std::string UrlOf(const LdapHost& host)
{
    std::string url;
    for (const char character : host.name)
    {
        constexpr char kDigits[] = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) || std::strchr("-._:", character))
            url += character;
        else
            (url += '%').append({kDigits[byte >> 4], kDigits[byte & 15]});
    }
    if (host.name.find(':') != std::string::npos)
        url = "[" + url + "]";
    return "ldap://" + url + ":" + std::to_string(host.port);
}

timeval TimeLeft(Deadline deadline)
{
    const auto left =
        std::max<long>(0, std::chrono::duration_cast<microseconds>(deadline - Clock::now()).count());
    return {left / 1'000'000, left % 1'000'000};
}

std::string TakeText(char* text)
{
    std::string result = text ? text : "";
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
            answer = identity.domain.empty() && question->defresult ? question->defresult
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

std::string Upper(std::string text)
{
    std::ranges::transform(text, text.begin(),
                           [](unsigned char character)
                           { return static_cast<char>(std::toupper(character)); });
    return text;
}

// The realm to ask for a ticket: the domain or the user name's own when it is a name of DNS, otherwise the
// one that the server says it belongs to.
std::string RealmFor(const LdapIdentity& identity, const std::string& serverRealm)
{
    const std::size_t at = identity.user.find('@');
    if (identity.domain.find('.') != std::string::npos)
        return Upper(identity.domain);
    if (identity.domain.empty() && at != std::string::npos)
        return Upper(identity.user.substr(at + 1));
    return serverRealm;
}

} // namespace

void LdapSession::FreeMessage::operator()(ldapmsg* message) const
{
    ldap_msgfree(message);
}

LdapSession::LdapSession(std::vector<LdapHost> hosts, bool tls)
    : mHosts(std::move(hosts)), mTls(tls), mTimeLimit(kCallLimit)
{
}

LdapSession::~LdapSession()
{
    if (mHandle)
        ldap_unbind_ext(mHandle, nullptr, nullptr);
}

LdapFault LdapSession::Connect(microseconds limit)
{
    LdapFault fault = {WindowsCode(LDAP_SERVER_DOWN), "no server name was given"};
    const Deadline deadline = Clock::now() + limit;
    auto waiting = static_cast<long>(mHosts.size());
    for (const LdapHost& host : mHosts)
    {
        const Deadline turn = Clock::now() + (deadline - Clock::now()) / waiting--;
        fault = ConnectTo(host, turn);
        if (!fault)
            break;
    }
    return fault;
}

LdapFault LdapSession::ConnectTo(const LdapHost& host, Deadline deadline)
{
    int socket = -1;
    LdapFault fault = ::ConnectTo(host, deadline, socket);
    if (fault)
        return fault;
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

LdapFault LdapSession::Ready() const
{
    if (mLost)
        return *mLost;
    if (!mHandle)
        return {WindowsCode(LDAP_SERVER_DOWN), "the session is not connected"};
    return {};
}

LdapFault LdapSession::LibraryFault(int code)
{
    if (code != LDAP_SERVER_DOWN)
        return {WindowsCode(code), DiagnosticOf(mHandle)};
    mLost = mMessages->Ending() ? mMessages->Ending() : mChannel->Ending();
    if (!*mLost)
        mLost = {WindowsCode(LDAP_DECODING_ERROR), kNoMessage};
    return *mLost;
}

LdapFault LdapSession::Await(int request, Deadline deadline, Message& answer, microseconds pause)
{
    timeval left{};
    LDAPMessage* message = nullptr;
    int kind = 0;
    if (pause > pause.zero())
        kind = ldap_result(mHandle, request, LDAP_MSG_ONE, &left, &message);
    if (kind == 0)
    {
        std::this_thread::sleep_for(pause);
        left = TimeLeft(deadline);
        kind = ldap_result(mHandle, request, LDAP_MSG_ONE, &left, &message);
    }
    answer.reset(message);
    if (kind > 0)
        return {};
    if (kind == 0)
    {
        ldap_abandon_ext(mHandle, request, nullptr, nullptr);
        return {WindowsCode(LDAP_TIMEOUT), "the server gave no complete answer in time"};
    }
    int code = LDAP_SERVER_DOWN;
    ldap_get_option(mHandle, LDAP_OPT_RESULT_CODE, &code);
    return LibraryFault(code);
}

LdapFault LdapSession::AwaitBind(int request, Deadline deadline, Message& answer)
{
    LdapFault fault = Await(request, deadline, answer);
    if (!fault && ldap_msgtype(answer.get()) != LDAP_RES_BIND)
        fault = {WindowsCode(LDAP_DECODING_ERROR), "the server answered another question"};
    return fault;
}

LdapFault LdapSession::ResultOf(ldapmsg* answer) const
{
    int code = LDAP_SUCCESS;
    char* text = nullptr;
    char** referrals = nullptr;
    const int parsed = ldap_parse_result(mHandle, answer, &code, nullptr, &text, &referrals, nullptr, 0);
    LdapFault fault = {WindowsCode(parsed == LDAP_SUCCESS ? code : parsed), TakeText(text)};
    if (code == LDAP_REFERRAL && referrals && referrals[0] && fault.cause.empty())
        fault.cause = referrals[0];
    ldap_memvfree(reinterpret_cast<void**>(referrals));
    return fault;
}

LdapFault LdapSession::BindSimple(const std::string& name, const Secret& password)
{
    if (LdapFault fault = Ready())
        return fault;
    berval credentials = {password.Text().size(), const_cast<char*>(password.Text().data())};
    int request = 0;
    const int sent =
        ldap_sasl_bind(mHandle, name.c_str(), LDAP_SASL_SIMPLE, &credentials, nullptr, nullptr, &request);
    if (sent != LDAP_SUCCESS)
        return LibraryFault(sent);
    Message answer;
    LdapFault fault = AwaitBind(request, Clock::now() + kCallLimit, answer);
    return fault ? fault : ResultOf(answer.get());
}

LdapFault LdapSession::BindDigest(const LdapIdentity& identity)
{
    if (LdapFault fault = Ready())
        return fault;
    if (identity.user.empty())
        return {WindowsCode(LDAP_INVALID_CREDENTIALS), "no user name was given"};
    const Deadline deadline = Clock::now() + kCallLimit;
    const char* mechanism = nullptr;
    int request = 0;
    Message answer;
    while (true)
    {
        const int result = ldap_sasl_interactive_bind(
            mHandle, "", "DIGEST-MD5", nullptr, nullptr, LDAP_SASL_QUIET, AnswerDigest,
            const_cast<LdapIdentity*>(&identity), answer.get(), &mechanism, &request);
        if (result == LDAP_SUCCESS)
            return {};
        if (result == LDAP_AUTH_UNKNOWN && !mechanism)
            return {WindowsCode(result),
                    "DIGEST-MD5 is not installed on this machine (package libsasl2-modules)"};
        if (result != LDAP_SASL_BIND_IN_PROGRESS)
            return LibraryFault(result);
        if (LdapFault fault = AwaitBind(request, deadline, answer))
            return fault;
    }
}

LdapFault LdapSession::ReadTraits(Deadline deadline, ServerTraits& traits)
{
    const char* const attributes[] = {"supportedSASLMechanisms", "ldapServiceName", nullptr};
    LdapResult result;
    LdapFault fault =
        SearchUntil(deadline, "", LDAP_SCOPE_BASE, "(objectClass=*)", attributes, false, result);
    if (result.IsEmpty())
        return fault;
    const auto valuesOf = [&](const char* attribute)
    { return ValuesOf(result.First(), attribute).value_or(std::vector<std::string_view>()); };
    for (const std::string_view mechanism : valuesOf(attributes[0]))
        traits.mechanisms.emplace_back(mechanism);
    // "example.com:server$@EXAMPLE.COM"
    for (const std::string_view service : valuesOf(attributes[1]))
        traits.realm = service.substr(std::min(service.rfind('@'), service.size() - 1) + 1);
    return fault;
}

LdapFault LdapSession::BindGss(const LdapIdentity& identity, GssMethod method)
{
    if (LdapFault fault = Ready())
        return fault;
    const Deadline deadline = Clock::now() + kCallLimit;
    ServerTraits traits;
    LdapFault fault = ReadTraits(deadline, traits);
    if (mLost || fault.code == WindowsCode(LDAP_TIMEOUT))
        return fault;

    std::string noTicket;
    if (method == GssMethod::Negotiate && !identity.user.empty() && !IsAddress(mHost))
    {
        const std::string realm = RealmFor(identity, traits.realm);
        LdapFault ticketFault;
        if (!realm.empty())
        {
            auto context = GssContext::Kerberos(identity, realm, mHost,
                                                std::min(deadline, Clock::now() + kTicketLimit), ticketFault);
            if (context)
                return ExchangeGss(std::move(context), kSpnegoName, deadline);
            noTicket = "Kerberos: " + ticketFault.cause;
            // With NTLM the controller would count a second wrong password, and lock the user out sooner.
            if (ticketFault.code == WindowsCode(LDAP_INVALID_CREDENTIALS))
                return {ticketFault.code, noTicket};
        }
    }
    // Servers of the Windows kind want NTLM inside SPNEGO, others by its own name.
    const bool bare = method == GssMethod::Ntlm && traits.realm.empty() &&
                      std::ranges::find(traits.mechanisms, kNtlmName) != traits.mechanisms.end();
    auto context = GssContext::Ntlm(identity, mHost, bare, deadline, fault);
    if (context)
        fault = ExchangeGss(std::move(context), bare ? kNtlmName : kSpnegoName, deadline);
    if (fault && !noTicket.empty())
        fault.cause += (fault.cause.empty() ? "" : "; ") + noTicket;
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
        Message answer;
        if (LdapFault fault = AwaitBind(request, deadline, answer))
            return fault;
        LdapFault result = ResultOf(answer.get());
        if (result && result.code != LDAP_SASL_BIND_IN_PROGRESS)
            return result;
        berval* token = nullptr;
        ldap_parse_sasl_bind_result(mHandle, answer.get(), &token, 0);
        incoming = token ? std::string(token->bv_val, token->bv_len) : std::string();
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
        return {WindowsCode(LDAP_LOCAL_ERROR), "the server ended the log-on too early"};
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
                              const char* const* attributes, bool namesOnly, LdapResult& result)
{
    if (LdapFault fault = Ready())
        return fault;
    LdapResult found;
    LdapFault fault =
        SearchUntil(Clock::now() + mTimeLimit + kGrace, base, scope, filter, attributes, namesOnly, found);
    if (!fault)
        result = std::move(found);
    return fault;
}

LdapFault LdapSession::SearchUntil(Deadline deadline, const std::string& base, int scope,
                                   const std::string& filter, const char* const* attributes, bool namesOnly,
                                   LdapResult& result)
{
    const auto serverLimit = std::chrono::ceil<seconds>(deadline - Clock::now() - kGrace).count();
    timeval limit = {std::max<long>(1, serverLimit), 0};
    int request = 0;
    const int sent =
        ldap_search_ext(mHandle, base.c_str(), scope, filter.c_str(), const_cast<char**>(attributes),
                        namesOnly, nullptr, nullptr, &limit, LDAP_NO_LIMIT, &request);
    if (sent != LDAP_SUCCESS)
        return LibraryFault(sent);
    for (int count = 0;; ++count)
    {
        Message message;
        const microseconds pause = count < kFewMessages ? microseconds(0) : kPause;
        if (LdapFault fault = Await(request, deadline, message, pause))
            return fault;
        Keep(message.get(), result);
        if (ldap_msgtype(message.get()) == LDAP_RES_SEARCH_RESULT)
            return ResultOf(message.get());
    }
}

void LdapSession::Keep(ldapmsg* message, LdapResult& result) const
{
    // The first message stands for the result, whatever it is.
    if (ldap_msgtype(message) != LDAP_RES_SEARCH_ENTRY)
    {
        if (result.IsEmpty())
            result.Add({});
        return;
    }
    BerElement* attributes = nullptr;
    berval name{};
    berval first{};
    ber_len_t length = 0;
    const bool read = ldap_get_dn_ber(mHandle, message, &attributes, &name) == LDAP_SUCCESS &&
                      ber_get_option(attributes, LBER_OPT_BER_REMAINING_BYTES, &length) == LBER_OPT_SUCCESS &&
                      ber_skip_raw(attributes, &first) != LBER_DEFAULT;
    result.Add(read ? std::string_view(first.bv_val, length) : std::string_view());
    ber_free(attributes, 0);
}
