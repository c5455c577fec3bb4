// SPDX-License-Identifier: MIT
// Whatever a directory server sends: a log-on and two searches end in their time. The server says the next of
// its answers, which two bytes of 0xff end, when nothing is left of the ones before; after the last one it
// closes, or stays, and the clock goes on. A log-on's protection is played: a token is its text after a byte.
#include "platform/net/LdapGss.h"
#include "tests/fuzz/Require.h"

#include <ctime>

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace platform;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr seconds kLimit{17}; // 15 for a call, one of grace, and one for a slow machine
constexpr long kNanoseconds = 1'000'000'000;

static int gServer = -1; // its socket
static bool gbServerStays = false;
static std::string_view gAnswers;        // still to be said
static std::size_t gSize = 0;            // of all of them
static steady_clock::duration gWaited{}; // what the clock is ahead

// OpenLDAP's library loses a request whose answer it cannot read, 4 KB with each connection that breaks so.
extern "C" const char* __asan_default_options()
{
    return "detect_leaks=0";
}

// The system's, and what was waited.
extern "C" [[gnu::visibility("default")]] int clock_gettime(clockid_t clock, timespec* now) noexcept
{
    const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    if (clock == CLOCK_MONOTONIC)
    {
        const long sum = now->tv_nsec + gWaited.count() % kNanoseconds;
        now->tv_sec += gWaited.count() / kNanoseconds + sum / kNanoseconds;
        now->tv_nsec = sum % kNanoseconds;
    }
    return result;
}

namespace platform
{

LdapFault ConnectTo(const LdapHost&, Deadline, int& socket)
{
    int pair[2];
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, pair) == 0);
    socket = pair[0];
    gServer = pair[1];
    return {};
}

bool WaitForSocket(int socket, short events, Deadline deadline)
{
    pollfd entry{socket, events, 0};
    if (poll(&entry, 1, 0) > 0)
        return true;
    if (!gAnswers.empty() || !gbServerStays)
    {
        const std::string_view answer = gAnswers.substr(0, gAnswers.find("\xff\xff"));
        Require(send(gServer, answer.data(), answer.size(), 0) == static_cast<ssize_t>(answer.size()));
        gAnswers.remove_prefix(std::min(answer.size() + 2, gAnswers.size()));
        if (gAnswers.empty() && !gbServerStays)
            shutdown(gServer, SHUT_WR);
        return true;
    }
    gWaited += std::max(deadline - steady_clock::now(), steady_clock::duration(0));
    return false;
}

bool IsAddress(const std::string&)
{
    return false;
}

std::string CauseText(std::string text)
{
    return text;
}

std::vector<KerberosUser> KerberosUsersOf(const LdapIdentity&, const std::string&, const std::string& realm,
                                          std::string&)
{
    return {{"user@" + realm}};
}

GssContext::GssContext(GssCredential, gss_OID mechanism, GssName, OM_uint32 wanted)
    : mMechanism(mechanism), mWanted(wanted), mFlags(wanted)
{
}

GssContext::~GssContext() = default;

std::unique_ptr<GssContext> GssContext::Ntlm(const LdapIdentity&, const std::string&, bool protects,
                                             LdapFault&)
{
    return std::unique_ptr<GssContext>(new GssContext({}, nullptr, {}, protects ? GSS_C_INTEG_FLAG : 0U));
}

std::unique_ptr<GssContext> GssContext::Kerberos(const KerberosUser& user, const Secret&, const std::string&,
                                                 Deadline, LdapFault& fault)
{
    if (user.name.ends_with('@')) // no realm
        fault = {eLdapLocalError, "no ticket"};
    return fault ? nullptr : Ntlm({}, {}, true, fault);
}

LdapFault GssContext::Step(const std::string& token, std::string& reply)
{
    reply = "token";
    mComplete = !token.empty();
    return token.starts_with('!') ? LdapFault{eLdapInvalidCredentials, token} : LdapFault();
}

bool GssContext::Wrap(std::string_view plain, std::string& token)
{
    token = "+" + std::string(plain);
    return true;
}

bool GssContext::Unwrap(std::string_view token, std::string& plain)
{
    plain = token.substr(std::min<std::size_t>(1, token.size()));
    return token.starts_with('+');
}

} // namespace platform

template <class Call>
static LdapFault InTime(Call call)
{
    const auto start = steady_clock::now();
    LdapFault fault = call();
    Require(steady_clock::now() - start < kLimit);
    return fault;
}

static void Search(LdapSession& session)
{
    const char* const attributes[] = {"namingContexts", nullptr};
    LdapSession::Messages result;
    const LdapFault fault =
        InTime([&] { return session.Search("", 0, "(objectClass=*)", attributes, false, result); });
    Require((result != nullptr) == !fault);
    for (ldapmsg* entry = result.get(); entry != nullptr; entry = session.NextEntry(entry))
    {
        berelement* position = nullptr;
        std::string name;
        std::vector<std::string_view> values;
        std::size_t size = 0;
        for (bool has = session.FirstAttribute(entry, position, name); has;
             has = session.NextAttribute(entry, position, name))
        {
            size += name.size();
            Require(session.Values(entry, name, values) || values.empty() || size > 0);
            for (const std::string_view value : values)
                size += value.size();
        }
        Require(size <= gSize);
        LdapSession::FreePosition(position);
    }
}

static void Fuzz(std::string_view input)
{
    constexpr std::size_t kMostAnswers = 100'000; // that a socket takes at once
    if (input.empty() || input.size() > kMostAnswers)
        return;
    gAnswers = input.substr(1);
    gSize = gAnswers.size();
    gbServerStays = (input[0] & 4) != 0;
    {
        LdapSession session({{"localhost", 389}}, false);
        Require(!session.Connect(seconds(15)));
        const LdapIdentity identity = {"user", "", Secret(L"password")};
        const int bind = input[0] & 3;
        const GssMethod method = bind == 1 ? GssMethod::Ntlm : GssMethod::Negotiate;
        InTime(
            [&] {
                return bind == 0 ? session.BindSimple("cn=user", identity.password)
                                 : session.BindGss(identity, method);
            });
        Search(session);
        Search(session);
    }
    close(gServer);
}
