// SPDX-License-Identifier: MIT
#include "tests/ldap/LdapConsole.h"

#include "ldap/LdapTest.h"
#include "tests/support/ProgramFolder.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <map>

namespace
{

// Stands for the server's name until the whole text is put together.
constexpr const char* kServerMark = "<server>";

// Wine's client has no such option.
constexpr unsigned kWineKeepAlive = 0x5c;

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
        {0x52, "Local Error"},
        {0x59, "Parameter Error"},
    };
    return texts.at(code);
}

// Windows' client knows the code alone.
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

std::string Begun(const std::string& method)
{
    return "\n" + std::string(method == kSimpleSsl ? "ldap_sslinit" : "ldap_init") + " begin ... end\n";
}

std::string Opened(const std::string& method)
{
    const unsigned keepAlive = RunsOnWindows() ? kWineKeepAlive : 0;
    return Begun(method) + "Set TCP keep alive - " + ResultText(keepAlive) +
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

std::vector<std::string> Typed(const LdapAnswers& answers)
{
    return {"LDAP ...",
            "1006=" + answers.server,
            "1008=" + answers.port,
            "1009=" + answers.domain,
            "1004=" + answers.user,
            "1007=" + answers.password,
            "1003=" + answers.method,
            answers.button};
}

std::string RunLdapTest(const LdapAnswers& answers,
                        const std::vector<std::pair<std::string, std::string>>& environment)
{
    const ProgramFolder folder;
    ProgramStart start;
    start.input = Typed(answers);
    start.environment = environment;
    start.limit = std::chrono::minutes(3); // a loaded machine draws slowly under Wine
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

std::string RunLdapCalls(const LdapAnswers& answers)
{
    const auto wide = [](const std::string& text)
    { return ZTString(std::filesystem::path(std::u8string(text.begin(), text.end())).wstring().c_str()); };
    static const std::map<std::string, DWORD> methods = {
        {kTryAll, eLDAPAuthTryAll},           {kSimpleSsl, eLDAPAuthSimpleSSL},
        {kSimplePlain, eLDAPAuthSimplePlain}, {kNtlm, eLDAPAuthNTLM},
        {kDigest, eLDAPAuthDigest},           {kDpa, eLDAPAuthDPA},
        {kNegotiate, eLDAPAuthNegotiate},
    };
    LDAPCreds creds;
    creds.mServer = wide(answers.server);
    creds.mPort = static_cast<DWORD>(std::stoul(answers.port));
    creds.mDomain = wide(answers.domain);
    creds.mUser = wide(answers.user);
    creds.mPassword = wide(answers.password);
    creds.mAuthMethod = methods.at(answers.method);
    std::string console;
    const LdapConsole append = [&console](const wchar_t* text)
    {
        const std::u8string bytes = std::filesystem::path(text).u8string();
        console.append(bytes.begin(), bytes.end());
    };
    TestLdapServer(creds, append, [&append](LDAP* session) { WalkLdapTree(session, append); });
    std::erase(console, '\r');
    return console.substr(1); // without the line end in front
}

std::string Framed(const LdapAnswers& answers, const std::string& attempts)
{
    return "========= LDAP =========\nServer: " + answers.server + "\nDomain: " + answers.domain +
           "\nUser: " + answers.user + "\n" + Replaced(attempts, kServerMark, answers.server) + "END TEST\n";
}

std::string NoSession(const std::string& method)
{
    return Begun(method) + "LDAP: Failed to initialize LDAP session.  Err=0, Success\n";
}

std::string NotConnected(const std::string& method, const std::string& cause)
{
    // Wine's client says that it is connected, and connects for the bind.
    if (RunsOnWindows())
        return Refused(method, 0x51, cause);
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
