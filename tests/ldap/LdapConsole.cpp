// SPDX-License-Identifier: MIT
#include "tests/ldap/LdapConsole.h"

#include "ldap/LdapTest.h"
#include "tests/support/ProgramFolder.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <map>
#include <regex>

namespace
{

// Stands for the server's name until the whole text is put together.
const std::string kServerMark = "<server>";

// Wine's client has no such option.
constexpr unsigned kWineKeepAlive = 0x5c;

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
    return CodeText(code) + (cause.empty() || RunsOnWindows() ? "" : ": " + cause) + "\n";
}

std::string ResultText(unsigned code)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%s (%08X)\n", code == 0 ? "succeeded" : "failed", code);
    return text.data();
}

std::string Begun(const TypedMethod& method)
{
    return "\n" + std::string(method.number == eLDAPAuthSimpleSSL ? "ldap_sslinit" : "ldap_init") +
           " begin ... end\n";
}

std::string Opened(const TypedMethod& method)
{
    return Begun(method) + "Set TCP keep alive - " + ResultText(RunsOnWindows() ? kWineKeepAlive : 0) +
           "Set no follow referrals - " + ResultText(0) + "ldap_connect(" + kServerMark + ") begin ...";
}

std::string BindText(const TypedMethod& method)
{
    return Opened(method) + ResultText(0) + "Set protocol ver=3 - " + ResultText(0) +
           "Set timeout (15 sec) - " + ResultText(0) + method.call + " begin ...";
}

std::string SearchText(const std::string& scope)
{
    return "ldap_search_s[Scope=" + scope + ", filter=(objectClass=*)] begin ...";
}

const std::string kRootWalked = SearchText("base") + ResultText(0) + "Got 1 objects back\n";

} // namespace

std::vector<std::string> Typed(const LdapAnswers& answers)
{
    return {"LDAP ...",
            "1006=" + answers.server,
            "1008=" + answers.port,
            "1009=" + answers.domain,
            "1004=" + answers.user,
            "1007=" + answers.password,
            std::string("1003=") + answers.method.text,
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
    const std::string console = WithoutTimes(outcome.console);
    if (!outcome.ended)
        return "the program did not end:\n" + console;
    const std::size_t begin = console.find("========= LDAP");
    return begin == std::string::npos ? "" : console.substr(begin);
}

std::string RunLdapCalls(const LdapAnswers& answers)
{
    const auto wide = [](const std::string& text)
    { return ZTString(std::filesystem::path(std::u8string(text.begin(), text.end())).wstring().c_str()); };
    LDAPCreds creds;
    creds.mServer = wide(answers.server);
    creds.mPort = static_cast<DWORD>(std::stoul(answers.port));
    creds.mDomain = wide(answers.domain);
    creds.mUser = wide(answers.user);
    creds.mPassword = wide(answers.password);
    creds.mAuthMethod = answers.method.number;
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
           "\nUser: " + answers.user + "\n" +
           std::regex_replace(attempts, std::regex(kServerMark), answers.server) + "END TEST\n";
}

std::string NoSession(const TypedMethod& method)
{
    return Begun(method) + "LDAP: Failed to initialize LDAP session.  Err=0, Success\n";
}

std::string NotConnected(const TypedMethod& method, const std::string& cause)
{
    // Wine's client says that it is connected, and connects for the bind.
    if (RunsOnWindows())
        return Refused(method, 0x51, cause);
    return Opened(method) + ResultText(0x51) + "LDAP: Failed to connect to LDAP server " + kServerMark +
           ".  Err=81, " + CodeText(0x51, cause);
}

std::string Refused(const TypedMethod& method, unsigned code, const std::string& cause)
{
    return BindText(method) + ResultText(code) + CodeText(code, cause);
}

std::string Bound(const TypedMethod& method)
{
    return BindText(method) + ResultText(0);
}

std::string Walked(const std::string& children)
{
    return kRootWalked + SearchText("one_level") + ResultText(0) + "Got " + children + " objects back\n";
}

std::string WalkRefused(unsigned code, const std::string& base)
{
    return kRootWalked + SearchText("one_level") + ResultText(code) + "LDAP:GetChildNodes failed with " +
           std::to_string(code) + ", " + CodeText(code) + " at [" + base + "]\n";
}
