// SPDX-License-Identifier: MIT
// The parts of the LDAP client that parse: host lists, texts from servers, frames of a protected stream.
#include "platform/net/GssFrames.h"
#include "platform/net/LdapHost.h"
#include "platform/net/LdapMessages.h"
#include "platform/net/LdapText.h"
#include "tests/support/LdapPeer.h"

#include <gtest/gtest.h>

namespace
{

TEST(LdapHosts, AreReadFromAListOfNamesAndAddresses)
{
    struct Case
    {
        const char* text;
        std::vector<LdapHost> hosts;
    };
    const Case kCases[] = {
        {"", {}},
        {"  ", {}},
        {"dc1", {{"dc1", 389}}},
        {" dc1  dc2:390 ", {{"dc1", 389}, {"dc2", 390}}},
        {"10.0.0.1:636", {{"10.0.0.1", 636}}},
        {"::1", {{"::1", 389}}}, // more than one colon: an address, not a port
        {"[::1]", {{"::1", 389}}},
        {"B\xc3\xbc"
         "cher.example:636",
         {{"xn--bcher-kva.example", 636}}},
        {"stra\xc3\x9f"
         "e.example",
         {{"xn--strae-oqa.example", 389}}},
        {"a\xcc\xb8..example", {{"a\xcc\xb8..example", 389}}}, // no name of DNS
        {"\xcd\xba.example", {{"\xcd\xba.example", 389}}},     // would become one with a blank
        {"[fe80::1%eth0]:65535", {{"fe80::1%eth0", 65535}}},
    };
    for (const Case& test : kCases)
        EXPECT_EQ(ParseHosts(test.text, 389), test.hosts) << test.text;
    for (const char* text : {"dc1:", "dc1:0", "dc1:65536", "dc1:12x", "dc1:-1", "[::1", "[::1]389", "[::1]:"})
        EXPECT_FALSE(ParseHosts(text, 389)) << text;
    EXPECT_FALSE(ParseHosts("dc1", 0));
    EXPECT_FALSE(ParseHosts("dc1", 65536));
}

TEST(LdapTexts, FromServersAreFitForOneConsoleLine)
{
    struct Case
    {
        std::string text;
        std::wstring safe;
    };
    const Case kCases[] = {
        {"plain", L"plain"},
        {std::string("data 775\0", 9), L"data 775"}, // servers of the Windows kind send the terminator
        {"two\r\nlines\t", L"two lines"},
        {"\x1b[2Jgone", L"[2Jgone"},
        {"gr\xc3\xbc\xc3\x9f", L"gr\u00fc\u00df"},
        {"\xf0\x9f\x98\x80", L"\U0001F600"},
        {"bad\xff\xc3", L"bad\uFFFD\uFFFD"},
        {"a\xe2\x80\xae"
         "b\xc2\x85"
         "c",
         L"a b c"}, // right-to-left override, next line
        {"", L""},
    };
    for (const Case& test : kCases)
        EXPECT_EQ(SafeToPrint(test.text), test.safe) << test.text;
    EXPECT_EQ(SafeToPrint(std::string(5000, 'x')), std::wstring(400, L'x') + L"...");
}

std::string MessageOf(const std::string& number, const std::string& operation)
{
    return BerElementOf(0x30, BerElementOf(0x02, number) + operation);
}

TEST(LdapMessages, ReachTheLibraryUnlessNobodyAskedForThem)
{
    const std::string name = BerElementOf(0x8a, "1.3.6.1.4.1.1466.20036");
    const std::string zero(1, '\0');
    const std::string first = MessageOf("\x01", LdapPeer::Connection::Result(0x61, 0));
    const std::string second = MessageOf("\x02", BerText(std::string(300, 'x')));
    const std::string advice =
        MessageOf(zero, LdapPeer::Connection::Result(0x78, 0, "", BerElementOf(0x8a, "")));
    const std::string end = MessageOf(zero, LdapPeer::Connection::Result(0x78, 0x33, "too busy", name));
    struct Case
    {
        const char* what;
        std::string stream;
        std::string ready;
        LdapFault ending;
    };
    const Case kCases[] = {
        {"answers alone", first + second, first + second, {}},
        {"advice between", first + advice + second, first + second, {}},
        {"a notice of disconnection", first + end + second, first, {0x33, "too busy"}},
        {"garbage behind an answer", first + "HTTP", first, {0x54, "the server's answer is no LDAP message"}},
        {"an answer that is its head",
         std::string("\x30\x02\x02\x01", 4) + first,
         "",
         {0x54, "the server's answer is no LDAP message"}},
        {"a length without end", "\x30\x80", "", {0x54, "the server's answer is no LDAP message"}},
        {"a length of 4 GB",
         "\x30\x84\xff\xff\xff\xff",
         "",
         {0x54, "the server's answer is no LDAP message"}},
        {"TLS", std::string("\x16\x03\x03\x00", 4), "", {0x54, "the server speaks TLS on this port"}},
    };
    for (const Case& test : kCases)
    {
        for (std::size_t step = 1; step <= test.stream.size(); ++step)
        {
            LdapMessages messages;
            std::string ready;
            for (std::size_t at = 0; at < test.stream.size() && !messages.Ending(); at += step)
            {
                messages.Append(std::string_view(test.stream).substr(at, step));
                ready += messages.Ready();
                messages.Drop(messages.Ready().size());
            }
            ASSERT_EQ(ready, test.ready) << test.what << " in steps of " << step;
            ASSERT_EQ(messages.Ending().code, test.ending.code) << test.what << " in steps of " << step;
            ASSERT_EQ(messages.Ending().cause, test.ending.cause) << test.what << " in steps of " << step;
        }
    }
}

TEST(GssFrames, AreCutWhereverTheStreamIs)
{
    const std::string stream = GssFrames::Frame("first") + GssFrames::Frame("") + GssFrames::Frame("third");
    for (std::size_t step = 1; step <= stream.size(); ++step)
    {
        GssFrames frames;
        std::vector<std::string> tokens;
        for (std::size_t at = 0; at < stream.size(); at += step)
        {
            ASSERT_TRUE(frames.Append(std::string_view(stream).substr(at, step)));
            for (std::string token; frames.Next(token);)
                tokens.push_back(token);
        }
        EXPECT_EQ(tokens, (std::vector<std::string>{"first", "", "third"})) << step;
    }
    EXPECT_FALSE(GssFrames().Append(std::string("\x80\x00\x00\x00", 4)));
}

} // namespace
