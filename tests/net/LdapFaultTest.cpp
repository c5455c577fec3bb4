// SPDX-License-Identifier: MIT
// What the LDAP client says and does when the server, or what stands in its place, does something wrong.
#include "tests/support/LdapPeer.h"

#include <winber.h>
#include <winldap.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using Connection = LdapPeer::Connection;
using Script = std::function<void(Connection&)>;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr unsigned char kBindResponse = 0x61;
constexpr unsigned char kSearchDone = 0x65;
constexpr unsigned char kExtendedResponse = 0x78;

PWCHAR Text(const wchar_t* text)
{
    return const_cast<PWCHAR>(text);
}

struct Session
{
    explicit Session(unsigned port, const wchar_t* host = L"127.0.0.1", bool tls = false)
        : handle(tls ? ldap_sslinitW(Text(host), port, 1) : ldap_initW(Text(host), port))
    {
    }
    ~Session()
    {
        if (handle)
            ldap_unbind(handle);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    ULONG Connect(LONG limit = 15) const
    {
        LDAP_TIMEVAL timeout{limit, 0};
        return ldap_connect(handle, &timeout);
    }
    ULONG Bind() const { return ldap_simple_bind_sW(handle, Text(L"cn=user"), Text(L"password")); }

    LDAP* handle;
};

using Attributes = std::vector<std::pair<std::wstring, std::vector<std::wstring>>>;

struct SearchOutcome
{
    ULONG code = 0;
    std::vector<Attributes> messages; // of the result, each with its attributes
};

SearchOutcome Search(const Session& session)
{
    SearchOutcome outcome;
    PWCHAR attributes[] = {Text(L"namingContexts"), nullptr};
    LDAPMessage* result = nullptr;
    outcome.code = ldap_search_sW(session.handle, Text(L""), LDAP_SCOPE_BASE, Text(L"(objectClass=*)"),
                                  attributes, 0, &result);
    for (LDAPMessage* entry = result; entry; entry = ldap_next_entry(session.handle, entry))
    {
        Attributes found;
        BerElement* position = nullptr;
        for (PWCHAR name = ldap_first_attributeW(session.handle, entry, &position); name;
             name = ldap_next_attributeW(session.handle, entry, position))
        {
            std::vector<std::wstring> values;
            PWCHAR* list = ldap_get_valuesW(session.handle, entry, name);
            for (PWCHAR* value = list; value && *value; ++value)
                values.emplace_back(*value);
            ldap_value_freeW(list);
            found.emplace_back(name, values);
            ldap_memfreeW(name);
        }
        ber_free(position, 0);
        outcome.messages.push_back(found);
    }
    ldap_msgfree(result);
    return outcome;
}

// Answers the bind with what `answer` gives and waits until the client has gone.
Script BindAnswer(std::function<void(Connection&)> answer)
{
    return [answer](Connection& connection)
    {
        connection.ReadRequest();
        answer(connection);
        connection.ReadRequest();
    };
}

TEST(LdapFault, OfABindIsNamedWithItsCause)
{
    struct Case
    {
        const char* what;
        Script script;
        ULONG code;
        const wchar_t* text;
    };
    const Case kCases[] = {
        {"closes after the request", [](Connection& peer) { peer.ReadRequest(); }, 0x51,
         L"Server Down: the server closed the connection"},
        {"garbage", BindAnswer([](Connection& peer) { peer.Send("HTTP/1.1 400 Bad Request\r\n\r\n"); }), 0x54,
         L"Decoding Error: the server's answer is no LDAP message"},
        {"TLS",
         BindAnswer([](Connection& peer) { peer.Send(std::string("\x15\x03\x01\x00\x02\x02\x46", 7)); }),
         0x54, L"Decoding Error: the server speaks TLS on this port"},
        {"a length of 2^31",
         BindAnswer([](Connection& peer) { peer.Send(std::string("\x30\x84\x80\x00\x00\x00", 6)); }), 0x54,
         L"Decoding Error: the server's answer is no LDAP message"},
        {"a referral",
         BindAnswer(
             [](Connection& peer)
             {
                 const std::string referral = BerElementOf(0xa3, BerText("ldap://127.0.0.1:1/dc=elsewhere"));
                 peer.SendMessage(Connection::Result(kBindResponse, 0x0a, "", referral));
             }),
         0x0a, L"Referral: ldap://127.0.0.1:1/dc=elsewhere"},
        {"a hostile text",
         BindAnswer(
             [](Connection& peer)
             { peer.SendMessage(Connection::Result(kBindResponse, 0x31, "no\r\n\x1b[1mlog-on\xff")); }),
         0x31, L"Invalid Credentials: no [1mlog-on\uFFFD"},
        {"a code that is none",
         BindAnswer([](Connection& peer) { peer.SendMessage(Connection::Result(kBindResponse, 0x7e)); }),
         0x7e, L"Unknown Error"},
        {"an answer of another kind",
         BindAnswer([](Connection& peer) { peer.SendMessage(Connection::Result(kSearchDone, 0)); }), 0x54,
         L"Decoding Error: the server answered another question"},
        {"a result without its texts",
         BindAnswer([](Connection& peer)
                    { peer.SendMessage(BerElementOf(kBindResponse, std::string("\x0a\x01\x00", 3))); }),
         0x54, L"Decoding Error"},
        {"a notice of disconnection",
         [](Connection& peer)
         {
             const Connection unasked = peer;
             peer.ReadRequest();
             const std::string name = BerElementOf(0x8a, "1.3.6.1.4.1.1466.20036");
             unasked.SendMessage(Connection::Result(kExtendedResponse, 0x34, "going\ndown", name));
             peer.ReadRequest();
         },
         0x34, L"Unavailable: going down"},
        {"messages that nobody asked for, of which the library does not outlive the first",
         [](Connection& peer)
         {
             const Connection unasked = peer;
             peer.ReadRequest();
             unasked.SendMessage(Connection::Result(kExtendedResponse, 0, "", BerElementOf(0x8a, "")));
             unasked.SendMessage(Connection::Result(kBindResponse, 0));
             peer.SendMessage(Connection::Result(kBindResponse, 0x31, "after all"));
             peer.ReadRequest();
         },
         0x31, L"Invalid Credentials: after all"},
    };
    for (const Case& test : kCases)
    {
        const LdapPeer peer(test.script);
        const Session session(peer.Port());
        ASSERT_EQ(session.Connect(), 0u) << test.what;
        EXPECT_EQ(session.Bind(), test.code) << test.what;
        EXPECT_EQ(LdapGetLastError(), test.code) << test.what;
        EXPECT_STREQ(ldap_err2stringW(test.code), test.text) << test.what;
    }
}

TEST(LdapFault, AnAnswerInSingleBytesIsAnAnswer)
{
    const LdapPeer peer(BindAnswer(
        [](Connection& connection)
        {
            for (const char byte : connection.Message(Connection::Result(kBindResponse, 0)))
            {
                connection.Send(std::string(1, byte));
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        }));
    const Session session(peer.Port());
    ASSERT_EQ(session.Connect(), 0u);
    EXPECT_EQ(session.Bind(), 0u);
}

TEST(LdapFault, SilenceEndsABindAfterFifteenSeconds)
{
    // A byte now and then is no answer either.
    const LdapPeer peer(BindAnswer(
        [](Connection& connection)
        {
            const auto end = steady_clock::now() + seconds(20);
            connection.Send("\x30\x84");
            while (steady_clock::now() < end)
                std::this_thread::sleep_for(std::chrono::milliseconds(500));
        }));
    const Session session(peer.Port());
    ASSERT_EQ(session.Connect(), 0u);
    const auto start = steady_clock::now();
    EXPECT_EQ(session.Bind(), 0x55u);
    const auto taken = steady_clock::now() - start;
    EXPECT_GE(taken, seconds(14));
    EXPECT_LE(taken, seconds(20));
    EXPECT_STREQ(ldap_err2stringW(0x55), L"Timeout: the server gave no complete answer in time");
}

TEST(LdapFault, OfASearchIsNamedWithItsCause)
{
    struct Case
    {
        const char* what;
        Script answer;
        ULONG code;
        const wchar_t* text;
    };
    const Case kCases[] = {
        {"size limit",
         [](Connection& peer)
         {
             peer.SendMessage(Connection::Entry("dc=one", {}));
             peer.SendMessage(Connection::Result(kSearchDone, 0x04));
         },
         0x04, L"Size Limit Exceeded"},
        {"time limit",
         [](Connection& peer) { peer.SendMessage(Connection::Result(kSearchDone, 0x03, "too long")); }, 0x03,
         L"Time Limit Exceeded: too long"},
        {"the end in the middle",
         [](Connection& peer) {
             peer.SendMessage(Connection::Entry("dc=one", {{"dc", {"one"}}}));
         },
         0x51, L"Server Down: the server closed the connection"},
    };
    for (const Case& test : kCases)
    {
        const LdapPeer peer(
            [&test](Connection& connection)
            {
                if (connection.AcceptBind() && connection.ReadRequest())
                    test.answer(connection);
            });
        const Session session(peer.Port());
        ASSERT_EQ(session.Connect(), 0u) << test.what;
        ASSERT_EQ(session.Bind(), 0u) << test.what;
        EXPECT_EQ(Search(session).code, test.code) << test.what;
        EXPECT_STREQ(ldap_err2stringW(test.code), test.text) << test.what;
    }
}

TEST(LdapFault, ALostSessionStaysLost)
{
    const LdapPeer peer([](Connection& connection) { connection.AcceptBind() && connection.ReadRequest(); });
    const Session session(peer.Port());
    ASSERT_EQ(session.Connect(), 0u);
    ASSERT_EQ(session.Bind(), 0u);
    EXPECT_EQ(Search(session).code, 0x51u);
    // A second connection would not be bound, and would wait for a peer that takes one alone.
    EXPECT_EQ(Search(session).code, 0x51u);
}

TEST(LdapSearch, LimitsTheServerAndItself)
{
    const LdapPeer peer(
        [](Connection& connection)
        {
            if (connection.AcceptBind() && connection.ReadRequest())
                connection.ReadRequest(); // the client gives the search up
        });
    const Session session(peer.Port());
    ULONG limit = 1;
    EXPECT_EQ(ldap_set_optionW(session.handle, LDAP_OPT_TIMELIMIT, &limit), 0u);
    ASSERT_EQ(session.Connect(), 0u);
    ASSERT_EQ(session.Bind(), 0u);
    const auto start = steady_clock::now();
    EXPECT_EQ(Search(session).code, 0x55u);
    EXPECT_LE(steady_clock::now() - start, seconds(10));
}

TEST(LdapSearch, ReadsOddEntries)
{
    std::vector<std::string> contexts;
    for (int i = 0; i < 10'000; ++i)
        contexts.push_back("dc=" + std::to_string(i));
    const LdapPeer peer(
        [&contexts](Connection& connection)
        {
            if (!connection.AcceptBind() || !connection.ReadRequest())
                return;
            connection.SendMessage(Connection::Entry("", {}));
            connection.SendMessage(
                Connection::Entry("", {{"NAMINGCONTEXTS", {"a"}}, {"namingContexts", {"b"}}}));
            connection.SendMessage(Connection::Entry("", {{"namingContexts", contexts}}));
            connection.SendMessage(Connection::Entry("", {{"empty", {}}}));
            connection.SendMessage(Connection::Entry("", {{"gr\xc3\xbc\xc3\x9f", {"\xf0\x9f\x98\x80"}}}));
            connection.SendMessage(Connection::Result(kSearchDone, 0));
            connection.ReadRequest();
        });
    const Session session(peer.Port());
    ASSERT_EQ(session.Connect(), 0u);
    ASSERT_EQ(session.Bind(), 0u);
    const SearchOutcome outcome = Search(session);
    EXPECT_EQ(outcome.code, 0u);
    ASSERT_EQ(outcome.messages.size(), 5u);
    EXPECT_TRUE(outcome.messages[0].empty());
    ASSERT_EQ(outcome.messages[1].size(), 2u);
    EXPECT_EQ(outcome.messages[1][0], (Attributes::value_type{L"NAMINGCONTEXTS", {L"a"}}));
    EXPECT_EQ(outcome.messages[1][1], (Attributes::value_type{L"namingContexts", {L"b"}}));
    ASSERT_EQ(outcome.messages[2].size(), 1u);
    EXPECT_EQ(outcome.messages[2][0].second.size(), 10'000u);
    EXPECT_EQ(outcome.messages[2][0].second.back(), L"dc=9999");
    EXPECT_EQ(outcome.messages[3], (Attributes{{L"empty", {}}}));
    EXPECT_EQ(outcome.messages[4], (Attributes{{L"gr\u00fc\u00df", {L"\U0001F600"}}}));
}

TEST(LdapSearch, AResultWithoutEntriesIsOneMessage)
{
    const LdapPeer peer(
        [](Connection& connection)
        {
            if (connection.AcceptBind() && connection.ReadRequest())
                connection.SendMessage(Connection::Result(kSearchDone, 0, "some words"));
            connection.ReadRequest();
        });
    const Session session(peer.Port());
    ASSERT_EQ(session.Connect(), 0u);
    ASSERT_EQ(session.Bind(), 0u);
    const SearchOutcome outcome = Search(session);
    ASSERT_EQ(outcome.messages.size(), 1u);
    EXPECT_TRUE(outcome.messages[0].empty());
}

TEST(LdapConnect, TellsWhatTheSystemSays)
{
    struct Case
    {
        const wchar_t* host;
        const wchar_t* text;
    };
    constexpr Case kCases[] = {
        {L"127.0.0.1", L"Server Down: connection refused"},
        {L"::1", L"Server Down: connection refused"},
        {L"no-such-host.invalid", L"Server Down: name or service not known"},
        {L"", L"Server Down: no server name was given"},
    };
    for (const Case& test : kCases)
    {
        // Nobody listens on the discard port.
        const Session session(9, test.host);
        EXPECT_EQ(session.Connect(), 0x51u);
        EXPECT_STREQ(ldap_err2stringW(LdapGetLastError()), test.text);
    }
    EXPECT_EQ(ldap_initW(Text(L"localhost"), 65536), nullptr);
    EXPECT_STREQ(ldap_err2stringW(LdapGetLastError()),
                 L"Parameter Error: the port is no number from 1 to 65535");
}

TEST(LdapConnect, TriesEveryHostUntilOneAnswers)
{
    const LdapPeer peer([](Connection& connection) { connection.AcceptBind(); });
    const std::wstring hosts = L"127.0.0.1:9 [::1]:9 localhost:" + std::to_wstring(peer.Port());
    const Session session(9, hosts.c_str());
    EXPECT_EQ(session.Connect(), 0u);
    EXPECT_EQ(session.Bind(), 0u);
}

TEST(LdapConnect, EndsWithinItsTimeWhenTlsIsNotAnswered)
{
    const LdapPeer peer([](Connection&) { std::this_thread::sleep_for(seconds(6)); });
    const Session session(peer.Port(), L"127.0.0.1", true);
    const auto start = steady_clock::now();
    EXPECT_EQ(session.Connect(4), 0x51u);
    EXPECT_LE(steady_clock::now() - start, seconds(12));
    EXPECT_STREQ(ldap_err2stringW(0x51), L"Server Down: the TLS handshake was not answered in time");
}

TEST(LdapConnect, NamesAPortWithoutTls)
{
    const LdapPeer peer([](Connection& connection) { connection.Send("220 mail server ready\r\n"); });
    const Session session(peer.Port(), L"127.0.0.1", true);
    EXPECT_EQ(session.Connect(), 0x51u);
    EXPECT_STREQ(ldap_err2stringW(0x51), L"Server Down: the server does not speak TLS on this port");
}

// The socket of this process that is connected to `port`, or -1.
int SocketTo(unsigned port)
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    {
        const int descriptor = std::atoi(entry.path().filename().c_str());
        sockaddr_in address{};
        socklen_t size = sizeof(address);
        if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
            address.sin_family == AF_INET && ntohs(address.sin_port) == port)
            return descriptor;
    }
    return -1;
}

TEST(LdapConnect, KeepsTheConnectionAliveWhenTold)
{
    for (const bool told : {false, true})
    {
        const LdapPeer peer([](Connection& connection) { connection.ReadRequest(); });
        const Session session(peer.Port());
        if (told)
        {
            EXPECT_EQ(ldap_set_optionW(session.handle, LDAP_OPT_TCP_KEEPALIVE, LDAP_OPT_ON), 0u);
        }
        ASSERT_EQ(session.Connect(), 0u);
        int value = -1;
        socklen_t size = sizeof(value);
        ASSERT_EQ(getsockopt(SocketTo(peer.Port()), SOL_SOCKET, SO_KEEPALIVE, &value, &size), 0);
        EXPECT_EQ(value != 0, told);
    }
}

TEST(LdapOptions, AreThoseThatAreOffered)
{
    const Session session(389, L"localhost");
    ULONG version = 0;
    EXPECT_EQ(ldap_get_optionW(session.handle, LDAP_OPT_PROTOCOL_VERSION, &version), 0u);
    EXPECT_EQ(version, 3u);
    EXPECT_EQ(ldap_set_optionW(session.handle, LDAP_OPT_PROTOCOL_VERSION, &version), 0u);
    EXPECT_EQ(ldap_set_optionW(session.handle, LDAP_OPT_REFERRALS, LDAP_OPT_OFF), 0u);
    EXPECT_EQ(ldap_set_optionW(session.handle, LDAP_OPT_REFERRALS, LDAP_OPT_ON), 0x59u);
    version = 2;
    EXPECT_EQ(ldap_set_optionW(session.handle, LDAP_OPT_PROTOCOL_VERSION, &version), 0x59u);
}

TEST(LdapErrors, BelongToTheThreadThatMetThem)
{
    const Session session(9);
    EXPECT_EQ(session.Connect(), 0x51u);
    std::thread(
        []
        {
            EXPECT_EQ(LdapGetLastError(), 0u);
            EXPECT_STREQ(ldap_err2stringW(0x00), L"Success");
            EXPECT_STREQ(ldap_err2stringW(0x31), L"Invalid Credentials");
            EXPECT_STREQ(ldap_err2stringW(0x51), L"Server Down");
            EXPECT_STREQ(ldap_err2stringW(0xFFFF), L"Unknown Error");
        })
        .join();
    EXPECT_STREQ(ldap_err2stringW(0x51), L"Server Down: connection refused");
}

} // namespace
