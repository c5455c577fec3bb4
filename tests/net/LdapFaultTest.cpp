// SPDX-License-Identifier: MIT
// What the LDAP client says and does when the server, or what stands in its place, does something wrong.
#include "tests/support/LdapPeer.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/ProgramFolder.h"
#include "text/Unicode.h"

#include <rpcdce.h>
#include <winldap.h>

#include <gmock/gmock.h>

#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr unsigned kUnused = 9; // the discard port, where nobody listens
constexpr unsigned char kBindResponse = 0x61;
constexpr unsigned char kSearchDone = 0x65;
constexpr unsigned char kExtendedResponse = 0x78;
constexpr const char* kUnbind = "\x42";
constexpr const char* kAbandon = "\x50";

static PWCHAR Text(const wchar_t* text)
{
    return const_cast<PWCHAR>(text);
}

struct Session
{
    explicit Session(unsigned port, const wchar_t* host = L"127.0.0.1", bool tls = false)
        : owner(tls ? ldap_sslinitW(Text(host), port, 1) : ldap_initW(Text(host), port), ldap_unbind)
    {
    }

    ULONG Connect(LONG limit = 15) const
    {
        LDAP_TIMEVAL timeout{limit, 0};
        return ldap_connect(handle, &timeout);
    }
    ULONG Bind() const { return ldap_simple_bind_sW(handle, Text(L"cn=user"), Text(L"password")); }

    const std::unique_ptr<LDAP, ULONG (*)(LDAP*)> owner;
    LDAP* const handle = owner.get();
};

static ULONG Search(const Session& session)
{
    PWCHAR attributes[] = {Text(L"namingContexts"), nullptr};
    LDAPMessage* result = nullptr;
    const ULONG code = ldap_search_sW(session.handle, Text(L""), LDAP_SCOPE_BASE, Text(L"(objectClass=*)"),
                                      attributes, 0, &result);
    ldap_msgfree(result);
    return code;
}

static Script BoundThen(const Script& answer)
{
    return [answer](Connection& peer) { peer.AcceptBind() && peer.ReadRequest() && (answer(peer), true); };
}

// Before the first request is read the peer's answers bear the number 0: nobody asked for them.
static Script Unasked(const std::vector<std::string>& operations, const Script& then)
{
    return [=](Connection& peer)
    {
        const Connection unasked = peer;
        peer.ReadRequest();
        for (const std::string& operation : operations)
            unasked.SendMessage(operation);
        then(peer);
        peer.ReadRequest();
    };
}

static Script Bytes(const std::string& bytes)
{
    return Answering([=](Connection& peer) { peer.Send(bytes); });
}

const std::string kGoingDown = Connection::Result(kExtendedResponse, 0x34, " going\n \ndown\n",
                                                  BerElementOf(0x8a, "1.3.6.1.4.1.1466.20036"));

TEST(LdapFault, IsNamedWithItsCauseInItsTime)
{
    constexpr int kTls = 0, kBind = 1, kSearch = 2;
    struct Case
    {
        const char* what;
        int call; // the one of these that fails
        Script script;
        ULONG code;
        const wchar_t* text;
        seconds least{0};
        seconds most{10};
    };
    const auto idle = [](seconds time) { return [=](Connection&) { std::this_thread::sleep_for(time); }; };
    constexpr const wchar_t* kNotLdap = L"Decoding Error: the server's answer is not an LDAP message";
    const Case kCases[] = {
        {"a referral", kBind,
         Answering(Connection::Result(kBindResponse, 0x0a, "",
                                      BerElementOf(0xa3, BerText("ldap://127.0.0.1:1/dc=elsewhere")))),
         0x0a, L"Referral: ldap://127.0.0.1:1/dc=elsewhere"},
        {"a referral with words", kBind,
         Answering(Connection::Result(kBindResponse, 0x0a, "moved",
                                      BerElementOf(0xa3, BerText("ldap://127.0.0.1:1")))),
         0x0a, L"Referral: moved"},
        {"a referral that ends too early", kBind,
         Answering(Connection::Result(kBindResponse, 0x0a, "", BerElementOf(0xa3, "\x04\x2fldap://any"))),
         0x0a, L"Referral"},
        {"an answer of another kind", kBind, Answering(Connection::Result(kSearchDone, 0)), 0x54,
         L"Decoding Error: the server answered another question"},
        {"a result with a NUL in its text", kBind,
         Answering(Connection::Result(kBindResponse, 0x31, std::string("mid\0dle", 7))), 0x31,
         L"Invalid Credentials: mid dle"},
        // Below zero are the library's own codes, not a server's.
        {"a code of four bytes", kBind,
         Answering(BerElementOf(kBindResponse, BerElementOf(0x0a, std::string("\x80\0\0\0", 4)) +
                                                   BerText("") + BerText("far"))),
         0x80000000, L"Unknown Error: far"},
        {"a result without its texts", kBind,
         Answering(BerElementOf(kBindResponse, std::string("\x0a\x01\x00", 3))), 0x54, L"Decoding Error"},
        {"TLS in place of LDAP", kBind, Bytes("\x15\x03\x01"), 0x54,
         L"Decoding Error: the server speaks TLS on this port"},
        {"bytes that are like TLS", kBind, Bytes("\x16\x02"), 0x54, kNotLdap},
        {"TLS after a message", kBind,
         Unasked({Connection::Result(kExtendedResponse, 0, "", BerElementOf(0x8a, ""))},
                 [](Connection& peer) { peer.Send("\x15\x03\x01"); }),
         0x54, kNotLdap},
        {"a length that is told later", kBind, Bytes("\x30\x80\x02\x01\x01"), 0x54, kNotLdap},
        {"a length of five bytes", kBind, Bytes("\x30\x85\x01\x01\x01\x01\x01"), 0x54, kNotLdap},
        {"a reset", kBind, [](Connection& peer) { peer.ReadRequest() && (peer.EndByReset(), true); }, 0x51,
         L"Server Down: connection reset by peer"},
        {"a reset in the handshake", kTls,
         [](Connection& peer)
         {
             peer.EndByReset();
             std::this_thread::sleep_for(std::chrono::milliseconds(300));
         },
         0x51, L"Server Down: connection reset by peer"},
        {"no TLS", kTls, [](Connection& peer) { peer.Send("220 no TLS\r\n"); }, 0x51,
         L"Server Down: the server does not speak TLS on this port"},
        {"a notice of disconnection", kBind, Unasked({kGoingDown}, idle(seconds(0))), 0x34,
         L"Unavailable: going down"},
        // The library does not outlive the first.
        {"messages that nobody asked for", kBind,
         Unasked({Connection::Result(kExtendedResponse, 0, "", BerElementOf(0x8a, "")),
                  Connection::Result(kBindResponse, 0)},
                 [](Connection& peer)
                 { peer.SendMessage(Connection::Result(kBindResponse, 0x31, "after all")); }),
         0x31, L"Invalid Credentials: after all"},
        {"an answer in single bytes", kBind,
         Answering(
             [](Connection& peer)
             {
                 for (const char byte : peer.Message(Connection::Result(kBindResponse, 0x31)))
                 {
                     peer.Send(std::string(1, byte));
                     std::this_thread::sleep_for(std::chrono::milliseconds(20));
                 }
             }),
         0x31, L"Invalid Credentials"},
        {"the end in the middle", kSearch,
         BoundThen([](Connection& peer) { peer.SendMessage(Connection::Entry("dc=one", {})); }), 0x51,
         L"Server Down: the server closed the connection"},
        {"a notice of disconnection in the middle", kSearch,
         [](Connection& peer)
         {
             const Connection unasked = peer;
             peer.AcceptBind() && peer.ReadRequest();
             for (int i = 0; i < 100; ++i)
                 peer.SendMessage(Connection::Entry("dc=one", {}));
             unasked.SendMessage(kGoingDown);
             peer.ReadRequest();
         },
         0x34, L"Unavailable: going down"},
        {"a search without end", kSearch,
         BoundThen([](Connection& peer)
                   { EXPECT_EQ(peer.ReadRequest() ? peer.Request().substr(3, 1) : "", kAbandon); }),
         0x55, L"Timeout: the server gave no complete answer in time", seconds(1)},
        {"silence in place of TLS", kTls, idle(seconds(5)), 0x51,
         L"Server Down: the TLS handshake was not answered in time", seconds(2)},
    };
    for (const Case& test : kCases)
    {
        SCOPED_TRACE(test.what);
        const LdapPeer peer(test.script);
        const Session session(peer.Port(), L"127.0.0.1", test.call == kTls);
        ULONG limit = 1;
        EXPECT_EQ(ldap_set_optionW(session.handle, LDAP_OPT_TIMELIMIT, &limit), 0u);
        const auto start = steady_clock::now();
        ULONG code = session.Connect(3);
        for (int call = kBind; call <= test.call; ++call)
        {
            ASSERT_EQ(code, 0u);
            code = call == kBind ? session.Bind() : Search(session);
        }
        const auto taken = steady_clock::now() - start;
        EXPECT_EQ(code, test.code);
        EXPECT_EQ(LdapGetLastError(), test.code);
        EXPECT_STREQ(ldap_err2stringW(test.code), test.text);
        EXPECT_GE(taken, test.least);
        EXPECT_LE(taken, test.most);
        // A second connection would not be bound, and would wait for a peer that takes one alone.
        if (test.code == 0x51 && test.call == kSearch)
            EXPECT_EQ(Search(session), 0x51u);
    }
}

TEST(LdapConnect, TellsWhatTheSystemSays)
{
    constexpr std::pair<const wchar_t*, const wchar_t*> kCases[] = {
        {L"::1", L"Server Down: connection refused"},
        {L"no-such-host.invalid", L"Server Down: name or service not known"},
        {L"", L"Server Down: no server name was given"},
    };
    for (const auto& [host, text] : kCases)
    {
        const Session session(kUnused, host);
        EXPECT_EQ(session.Connect(), 0x51u);
        EXPECT_STREQ(ldap_err2stringW(LdapGetLastError()), text);
    }
    EXPECT_EQ(Session(kUnused).Bind(), 0x51u);
    EXPECT_STREQ(ldap_err2stringW(0x51), L"Server Down: the session is not connected");
    EXPECT_STREQ(ldap_err2stringW(0x4c), L"Virtual List View Error");
    EXPECT_STREQ(ldap_err2stringW(0x5a), L"No Memory") << "nothing of the cause of another error";
    EXPECT_STREQ(ldap_err2stringW(0xFFFF), L"Unknown Error");
}

TEST(LdapConnect, TriesEveryHostUntilOneAnswersAndKeepsItAliveWhenTold)
{
    for (const bool told : {false, true})
    {
        const LdapPeer peer(
            [](Connection& connection)
            {
                connection.AcceptBind() && connection.ReadRequest();
                EXPECT_EQ(connection.Request().substr(3, 1), kUnbind);
            });
        const std::wstring hosts = L"127.0.0.1:9 [::1]:9 localhost:" + std::to_wstring(peer.Port());
        const Session session(kUnused, hosts.c_str());
        if (told)
            EXPECT_EQ(ldap_set_optionW(session.handle, LDAP_OPT_TCP_KEEPALIVE, LDAP_OPT_ON), 0u);
        ASSERT_EQ(session.Connect(), 0u);
        const std::string seen = Said("ss -Htno dport = :" + std::to_string(peer.Port()));
        EXPECT_EQ(seen.find("keepalive") != std::string::npos, told) << seen;
        EXPECT_EQ(session.Bind(), 0u);
    }
}

// A network where an address is known and nobody answers.
constexpr const char* kSilence =
    "ip link add d0 type veth peer name d1 && ip link set d0 up && ip link set d1 up && "
    "ip addr add 192.0.2.8/24 dev d0 && ip neigh add 192.0.2.9 lladdr 02:00:00:00:00:09 dev d0 && "
    "ip addr add 2001:db8::8/64 dev d0 nodad && ip neigh add 2001:db8::9 lladdr 02:00:00:00:00:09 dev d0";

// Of a name's addresses, and of several hosts, that which says most of the server is told.
TEST(LdapConnect, GivesEachAddressOfANameItsShareOfTheTime)
{
    if (!EnterOwnNetwork())
        GTEST_SKIP() << "a network of its own needs root";
    ReplaceSystemFile("/etc/hosts", "2001:db8::9 two\n127.0.0.1 two localhost\n192.0.2.9 one silent\n"
                                    "2001:db8::9 one\n2001:db9::9 silent\n::1 off\n127.0.0.1 off\n");
    struct Case
    {
        const char* before; // is done
        const wchar_t* hosts;
        const wchar_t* text; // null where a peer answers
        seconds least{0};
        seconds most{1};
    };
    const Case kCases[] = {
        {"true", L"two", nullptr},
        {"true", L"two:9", L"Server Down: connection refused"},
        {"true", L"127.0.0.1:9 [2001:db8::9]:9", L"Server Down: connection refused"},
        {"true", L"[2001:db8::9]:9", L"Server Down: network is unreachable"},
        {"echo 1 > /proc/sys/net/ipv6/conf/lo/disable_ipv6", L"off:9", L"Server Down: connection refused"},
        {"true", L"[::1]:9", L"Server Down: cannot assign requested address"},
        {kSilence, L"two", nullptr, seconds(1), seconds(2)},
        {"true", L"silent:9", L"Server Down: connection timed out", seconds(2), seconds(4)},
        {"true", L"127.0.0.1:9 silent", L"Server Down: connection refused", seconds(1), seconds(4)},
        {"true", L"one:9", L"Server Down: connection timed out", seconds(2), seconds(4)},
    };
    for (const Case& test : kCases)
    {
        SCOPED_TRACE(text::ToUtf8(test.hosts));
        const LdapPeer peer([](Connection& connection) { connection.AcceptBind(); });
        EXPECT_EQ(std::system(test.before), 0);
        const Session session(peer.Port(), test.hosts);
        const auto start = steady_clock::now();
        const ULONG code = session.Connect(2);
        const auto taken = steady_clock::now() - start;
        EXPECT_EQ(code, test.text != nullptr ? 0x51u : 0u);
        if (test.text != nullptr)
            EXPECT_STREQ(ldap_err2stringW(code), test.text);
        else
            EXPECT_EQ(session.Bind(), 0u);
        EXPECT_GE(taken, test.least);
        EXPECT_LE(taken, test.most);
    }
}

TEST(LdapConnect, SaysSoWhenTheSystemHasNoThreadLeft)
{
    if (getuid() != 0)
        GTEST_SKIP() << "a user with no process left is made by root";
    const auto connect = []
    {
        constexpr uid_t kNobody = 65534;
        const rlimit none{0, 0};
        if (setresuid(kNobody, kNobody, kNobody) == 0 && setrlimit(RLIMIT_NPROC, &none) == 0)
        {
            const Session session(kUnused);
            std::fprintf(stderr, "%x", session.Connect());
            std::fprintf(stderr, " %ls", ldap_err2stringW(0x52));
        }
        _exit(0);
    };
    EXPECT_EXIT(connect(), testing::ExitedWithCode(0), "^52 Local Error: resource temporarily unavailable$");
}

static ULONG BindAs(const Session& session, const wchar_t* user, const wchar_t* domain, ULONG method)
{
    const std::u16string name = text::ToUtf16(user);
    const std::u16string realm = text::ToUtf16(domain);
    const auto units = [](const std::u16string& text)
    { return reinterpret_cast<unsigned short*>(const_cast<char16_t*>(text.data())); };
    SEC_WINNT_AUTH_IDENTITY_W identity{};
    identity.User = identity.Password = units(name);
    identity.UserLength = identity.PasswordLength = static_cast<ULONG>(name.size());
    identity.Domain = units(realm);
    identity.DomainLength = static_cast<ULONG>(realm.size());
    identity.Flags = SEC_WINNT_AUTH_IDENTITY_UNICODE;
    return ldap_bind_sW(session.handle, nullptr, reinterpret_cast<PWCHAR>(&identity), method);
}

TEST(LdapLogOn, HasTheDomainForARealmWhereTheServerLeavesTheChoice)
{
    const LdapPeer peer(
        [](Connection& connection)
        {
            connection.ReadRequest();
            connection.SendMessage(Connection::Result(
                kBindResponse, 0x0e, "",
                BerElementOf(0x87, "realm=\"one\",realm=\"two\",nonce=\"n\",algorithm=md5-sess")));
            connection.ReadRequest();
            EXPECT_THAT(connection.Request(), testing::HasSubstr("username=\"bob\",realm=\"two\""));
            connection.SendMessage(Connection::Result(kBindResponse, 0x31));
        });
    const Session session(peer.Port());
    ASSERT_EQ(session.Connect(), 0u);
    EXPECT_EQ(BindAs(session, L"bob", L"two", LDAP_AUTH_DIGEST), 0x31u);
}

TEST(LdapLogOn, SaysWhyAChallengeCannotBeMet)
{
    const LdapPeer peer(Answering(Connection::Result(
        kBindResponse, 0x0e, "", BerElementOf(0x87, "qop=\"none\",nonce=\"n\",algorithm=md5-sess"))));
    const Session session(peer.Port());
    ASSERT_EQ(session.Connect(), 0u);
    EXPECT_STREQ(
        ldap_err2stringW(BindAs(session, L"bob", L"two", LDAP_AUTH_DIGEST)),
        L"Auth Unknown: SASL(-13): authentication failure: Server doesn't support any known qop level");
}

TEST(LdapLogOn, NamesThePackageThatIsMissing)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process that has looked for none yet
    const auto bind = [](ULONG method)
    {
        setenv("SASL_PATH", "/nowhere", 1);
        setenv("GSS_MECH_CONFIG", "/dev/null", 1);
        const LdapPeer peer(Answering(Connection::Result(kSearchDone, 0)));
        const Session session(peer.Port());
        const ULONG code = session.Connect() == 0 ? BindAs(session, L"bob", L"", method) : 0;
        std::fprintf(stderr, "%x %ls\n", code, ldap_err2stringW(code));
        _exit(0);
    };
    const std::string missing = "^56 Auth Unknown: [^ ]+ is not installed on this machine \\(package ";
    EXPECT_EXIT(bind(LDAP_AUTH_DIGEST), testing::ExitedWithCode(0), missing + "libsasl2-modules\\)\n");
    EXPECT_EXIT(bind(LDAP_AUTH_NTLM), testing::ExitedWithCode(0), missing + "gss-ntlmssp\\)\n");
}

// The library looks this machine's own name up when it begins, so once in a process, DIGEST-MD5's each time
// that it does, and Kerberos the realm's servers, for a ticket and again for the credential that NTLM is a
// part of.
TEST(LdapLogOn, IsNotHeldUpByASilentNameServer)
{
    if (!EnterOwnNetwork() || unshare(CLONE_NEWUTS) != 0)
        GTEST_SKIP() << "a network of its own needs root";
    EXPECT_EQ(std::system(kSilence), 0);
    EXPECT_EQ(sethostname("only-a-name-server-knows", 24), 0);
    ReplaceSystemFile("/etc/resolv.conf", "nameserver 192.0.2.9\n");
    const std::string refusal = Connection::Result(kBindResponse, 0x31);
    const Script digest = Answering(refusal);
    const Script negotiate = [&refusal](Connection& connection)
    {
        connection.ReadRequest();
        connection.SendMessage(Connection::Result(kSearchDone, 0));
        if (connection.ReadRequest())
            connection.SendMessage(refusal);
    };
    {
        const Session session(kUnused, L"unknown.example");
        EXPECT_EQ(session.Connect(1), 0x51u);
        EXPECT_STREQ(ldap_err2stringW(0x51), L"Server Down: the name server gave no answer in time");
    }
    for (const auto& [method, script, most] :
         {std::tuple(LDAP_AUTH_DIGEST, digest, seconds(6)), {LDAP_AUTH_NEGOTIATE, negotiate, seconds(18)}})
    {
        SCOPED_TRACE(method);
        const LdapPeer peer(script);
        const Session session(peer.Port(), L"localhost");
        auto start = steady_clock::now();
        ASSERT_EQ(session.Connect(), 0u);
        EXPECT_LT(steady_clock::now() - start, seconds(6));
        start = steady_clock::now();
        const ULONG code = BindAs(session, L"bob@silent.example", L"", method);
        EXPECT_LT(steady_clock::now() - start, most);
        EXPECT_EQ(code, 0x31u);
        EXPECT_STREQ(ldap_err2stringW(code),
                     method == LDAP_AUTH_DIGEST
                         ? L"Invalid Credentials"
                         : L"Invalid Credentials: Kerberos: the ticket server gave no answer in time");
    }
}
