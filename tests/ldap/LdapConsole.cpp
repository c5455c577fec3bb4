// SPDX-License-Identifier: MIT
#include "tests/ldap/LdapConsole.h"

#include "tests/support/ProgramFolder.h"

#include <array>
#include <cstdio>
#include <map>

namespace
{

// Stands for the server's name until the whole text is put together.
constexpr const char* kServerMark = "<server>";

std::string Replaced(std::string text, const std::string& part, const std::string& by)
{
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += by.size())
        text.replace(at, part.size(), by);
    return text;
}

std::string CodeText(unsigned code)
{
    static const std::map<unsigned, std::string> texts = {
        {0x01, "Operations Error"},
        {0x07, "Authentication Method Not Supported"},
        {0x08, "Strong Authentication Required"},
        {0x20, "No Such Object"},
        {0x22, "Invalid DN Syntax"},
        {0x31, "Invalid Credentials"},
        {0x35, "Unwilling To Perform"},
        {0x51, "Server Down"},
    };
    return texts.at(code);
}

// The Windows client knows the code alone.
std::string CodeText(unsigned code, const std::string& cause)
{
    return CodeText(code) + (cause.empty() || RunsOnWindows() ? "" : ": " + cause);
}

std::string ResultText(unsigned code)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%s (%08X)\n", code == 0 ? "succeeded" : "failed", code);
    return text.data();
}

std::string Opened(const std::string& method)
{
    return "\n" + std::string(method == kSimpleSsl ? "ldap_sslinit" : "ldap_init") +
           " begin ... end\n"
           "Set TCP keep alive - succeeded (00000000)\n"
           "Set no follow referrals - succeeded (00000000)\n"
           "ldap_connect(" +
           kServerMark + ") begin ...";
}

std::string BindText(const std::string& method)
{
    static const std::map<std::string, std::string> names = {
        {kSimpleSsl, "ldap_simple_bind_s"}, {kSimplePlain, "ldap_bind_s(plain text)"},
        {kNtlm, "ldap_bind_s(NTLM)"},       {kDigest, "ldap_bind_s(Digest)"},
        {kDpa, "ldap_bind_s(DPA)"},         {kNegotiate, "ldap_bind_s(negotiate)"},
    };
    return Opened(method) + ResultText(0) +
           "Set protocol ver=3 - succeeded (00000000)\n"
           "Set timeout (15 sec) - succeeded (00000000)\n" +
           names.at(method) + " begin ...";
}

} // namespace

std::string RunLdapTest(const LdapAnswers& answers,
                        const std::vector<std::pair<std::string, std::string>>& environment)
{
    const ProgramFolder folder;
    ProgramStart start;
    start.input = {"LDAP ...",
                   "1006=" + answers.server,
                   "1008=" + answers.port,
                   "1009=" + answers.domain,
                   "1004=" + answers.user,
                   "1007=" + answers.password,
                   "1003=" + answers.method,
                   answers.button};
    start.environment = environment;
    const ProgramOutcome outcome = folder.Run(start);
    if (!outcome.ended)
        return "the program did not end:\n" + outcome.console;
    const std::string console = WithoutTimes(outcome.console);
    const std::size_t begin = console.find("========= LDAP");
    constexpr std::string_view kEnd = "END TEST\n";
    const std::size_t end = console.find(kEnd);
    if (begin == std::string::npos)
        return {};
    return console.substr(begin, end == std::string::npos ? end : end + kEnd.size() - begin);
}

std::string Framed(const LdapAnswers& answers, const std::string& attempts)
{
    return "========= LDAP =========\nServer: " + answers.server + "\nDomain: " + answers.domain +
           "\nUser: " + answers.user + "\n" + Replaced(attempts, kServerMark, answers.server) + "END TEST\n";
}

std::string NotConnected(const std::string& method, const std::string& cause)
{
    return Opened(method) + ResultText(0x51) + "LDAP: Failed to connect to LDAP server " + kServerMark +
           ".  Err=81, " + CodeText(0x51, cause) + "\n";
}

std::string Refused(const std::string& method, unsigned code, const std::string& cause)
{
    return BindText(method) + ResultText(code) + CodeText(code, cause) + "\n";
}

std::string Bound(const std::string& method)
{
    return BindText(method) + ResultText(0);
}

std::string Walked(int children)
{
    return "ldap_search_s[Scope=base, filter=(objectClass=*)] begin ...succeeded (00000000)\n"
           "Got 1 objects back\n"
           "ldap_search_s[Scope=one_level, filter=(objectClass=*)] begin ...succeeded (00000000)\n"
           "Got " +
           std::to_string(children) + " objects back\n";
}

std::string WalkRefused(unsigned code, const std::string& base)
{
    return "ldap_search_s[Scope=base, filter=(objectClass=*)] begin ...succeeded (00000000)\n"
           "Got 1 objects back\n"
           "ldap_search_s[Scope=one_level, filter=(objectClass=*)] begin ..." +
           ResultText(code) + "LDAP:GetChildNodes failed with " + std::to_string(code) + ", " +
           CodeText(code) + " at [" + base + "]\n";
}
