// SPDX-License-Identifier: MIT
// What servers that send without end or measure cost the program that ships: its time, and its memory.
#include "tests/ldap/LdapConsole.h"
#include "tests/support/LdapPeer.h"
#include "tests/support/ProgramFolder.h"

#include <gmock/gmock.h>

#include <regex>

#include <sys/resource.h>

constexpr int kForever = 1'000'000'000;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsMeasured = false;
#else
constexpr bool kIsMeasured = true;
#endif
// What the client must come through in its 15 s: less where each step costs ten times as much.
constexpr int kMany = kIsMeasured ? 1'000'000 : 100'000;
// A search may take 15 s, and a second more; the rest is the start of a program on a loaded machine.
constexpr std::chrono::seconds kLimit{20};
constexpr long kMostMemory = 200 * 1024; // KiB

// Sends a message many times over, until the client has gone.
static void SendMany(const Connection& peer, const std::string& message, int count)
{
    const int inBlock = std::min(count, 1 + (1 << 20) / static_cast<int>(message.size()));
    const std::string block = Repeated(message, static_cast<std::size_t>(inBlock));
    for (int sent = 0; sent < count && peer.Send(block); sent += inBlock)
        ;
}

static Script AtBind(const Script& answer)
{
    return [=](Connection& peer)
    {
        const Connection unasked = peer;
        peer.ReadRequest();
        answer(peer);
        SendMany(unasked, unasked.Message(Connection::Result(0x78, 0)), kForever);
    };
}

static Script Entries(const std::function<std::vector<Connection::Attribute>()>& attributes, int count)
{
    return [=](Connection& peer)
    {
        peer.AcceptBind();
        peer.ReadRequest();
        SendMany(peer, peer.Message(Connection::Entry("cn=any", attributes())), count);
        peer.SendMessage(Connection::Result(0x65, 0));
        peer.ReadRequest();
    };
}

static std::vector<Connection::Attribute> Values(const char* name, int count, std::size_t size)
{
    return {{name, std::vector<std::string>(static_cast<std::size_t>(count), std::string(size, 'x'))}};
}

static std::vector<Connection::Attribute> Attributes(int count)
{
    std::vector<Connection::Attribute> attributes;
    while (count-- > 0)
        attributes.push_back({std::to_string(count), {}});
    return attributes;
}

TEST(HostileDirectory, NeitherHoldsNorDrainsTheProgram)
{
    struct Case
    {
        const char* what;
        Script script;
        const char* told;
        TypedMethod method = kSimplePlain;
    };
    constexpr const char* kTooMuch =
        "(00000046)\n[] LDAP:GetChildNodes failed with 70, Results Too Large: the server "
        "sent more than 64 MB at []\n";
    const std::string kLongText =
        "failed (00000031)\n[] Invalid Credentials: " + std::string(400, 'x') + "...[] \n";
    const auto referred = [](unsigned char code)
    {
        return [=](Connection& peer)
        {
            const std::string servers = BerElementOf(0xa3, Repeated(BerText(""), 7U << 20U));
            peer.SendMessage(Connection::Result(0x61, code, "", servers));
        };
    };
    constexpr const char* kFour = "Got 4 objects back\n";
    const Case kCases[] = {
        {"messages that nobody asked for", AtBind([](Connection&) {}),
         "failed (00000055)\n[] Timeout: the server gave no complete answer in time[] \n"},
        {"an answer of 60 MB",
         AtBind([](Connection& peer) { peer.Send(std::string("\x30\x84\x03\xc0\x00\x00\x02\x01\x01", 9)); }),
         "failed (00000046)\n[] Results Too Large: the server sent a message of more than 16 MB[] \n"},
        // An answer to each of the log-on's two requests.
        {"messages without an operation",
         [](Connection& peer)
         {
             peer.ReadRequest();
             for (int i = 0; i < 2; ++i)
                 peer.SendMessage(std::string("\x61\xa1\x0a", 3));
             peer.ReadRequest();
         },
         "failed (00000054)\n[] Decoding Error: the server's answer is not an LDAP message[] \n[] END TEST\n",
         kNtlm},
        {"a result's text of 15 MB",
         AtBind([](Connection& peer)
                { peer.SendMessage(Connection::Result(0x61, 0x31, std::string(15U << 20U, 'x'))); }),
         kLongText.c_str()},
        {"a referral to nowhere, many times over", AtBind(referred(0x0a)),
         "failed (0000000A)\n[] Referral[] \n"},
        {"the same where none may be", AtBind(referred(0x0e)),
         "failed (00000052)\n[] Local Error: SASL(-1): generic failure: no server challenge[] \n", kDigest},
        {"entries", Entries([] { return Attributes(1); }, kForever), kTooMuch},
        {"the largest values", Entries([] { return Values("namingContexts", 15, 1U << 20U); }, 4), kFour},
        {"attributes", Entries([] { return Attributes(kMany); }, 4), kFour},
        {"values", Entries([] { return Values("a", 7 * kMany, 0); }, 4), kFour},
    };
    for (const Case& test : kCases)
    {
        SCOPED_TRACE(test.what);
        const LdapPeer peer(test.script);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_THAT(RunLdapTest({std::to_string(peer.Port()), "cn=any", "any", test.method, "127.0.0.1"}),
                    testing::HasSubstr(test.told));
        const auto taken = std::chrono::steady_clock::now() - start;
        rusage largest{}; // of the programs that have ended
        getrusage(RUSAGE_CHILDREN, &largest);
        if (kIsMeasured)
        {
            EXPECT_LE(taken, kLimit);
            EXPECT_LE(largest.ru_maxrss, kMostMemory);
        }
    }
}

// The lines of a test count from its start: it begins two seconds and more after the program.
TEST(LdapTest, CountsItsLinesFromItsStart)
{
    std::vector<std::string> input = Typed({"9", "cn=any", "any", kSimplePlain});
    input.emplace_back("Close");
    const ProgramStart start = {
        .arguments = {"-FTP_LOG=case"}, .input = input, .awaited = "Beginning upload"};
    const std::string console = ProgramFolder().Run(start).console;
    std::smatch begin;
    ASSERT_TRUE(std::regex_search(console, begin, std::regex("\\[(\\d+)ms\\] \n========= LDAP"))) << console;
    EXPECT_LT(std::stoi(begin[1]), 2000) << console;
}
