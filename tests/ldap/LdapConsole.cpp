// SPDX-License-Identifier: MIT
#include "tests/ldap/LdapConsole.h"

#include "ldap/LdapTest.h"
#include "tests/support/ProgramFolder.h"
#include "text/Unicode.h"

#include <cstdio>
#include <regex>

// Stands for the server's name until the whole text is put together.
const std::string kServerMark = "<server>";

// Wine's client has no such option.
constexpr unsigned kWineKeepAlive = 0x5c;

// Windows' client knows the code alone.
static std::string CodeText(unsigned code, const std::string& cause)
{
    static const std::map<unsigned, std::string> texts = {
        {0x01, "Operations Error"},
        {0x04, "Size Limit Exceeded"},
        {0x07, "Authentication Method Not Supported"},
        {0x08, "Strong Authentication Required"},
        {0x20, "No Such Object"},
        {0x22, "Invalid DN Syntax"},
        {0x31, "Invalid Credentials"},
        {0x33, "Busy"},
        {0x35, "Unwilling To Perform"},
        {0x51, "Server Down"},
        {0x52, "Local Error"},
        {0x59, "Parameter Error"},
    };
    return texts.at(code) + (cause.empty() || RunsOnWindows() ? "" : ": " + cause);
}

static std::string ResultText(unsigned code)
{
    char text[32];
    std::snprintf(text, sizeof text, "%s (%08X)\n", code == 0 ? "succeeded" : "failed", code);
    return text;
}

static std::string Begun(const TypedMethod& method)
{
    return std::string("[] \n[] ") + (method.number == eLDAPAuthSimpleSSL ? "ldap_sslinit" : "ldap_init") +
           " begin ... [] end\n";
}

static std::string Opened(const TypedMethod& method)
{
    return Begun(method) + "[] Set TCP keep alive - " + ResultText(RunsOnWindows() ? kWineKeepAlive : 0) +
           "[] Set no follow referrals - " + ResultText(0) + "[] ldap_connect(" + kServerMark + ") begin ...";
}

static std::string BindText(const TypedMethod& method)
{
    return Opened(method) + "[] " + ResultText(0) + "[] Set protocol ver=3 - " + ResultText(0) +
           "[] Set timeout (15 sec) - " + ResultText(0) + "[] " + method.call + " begin ...";
}

static std::string SearchText(const std::string& scope, unsigned code)
{
    return "[] ldap_search_s[Scope=" + scope + ", filter=(objectClass=*)] begin ...[] " + ResultText(code);
}

std::string gAppended;

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
    constexpr std::chrono::minutes kLimit{3}; // a loaded machine draws slowly under Wine
    const ProgramOutcome outcome =
        ProgramFolder().Run({.input = Typed(answers), .environment = environment, .limit = kLimit});
    const std::string console = WithoutTimes(outcome.console, "[] ");
    if (!outcome.ended)
        return "the program did not end:\n" + console;
    const std::size_t begin = console.find("[] \n========= LDAP");
    return begin == std::string::npos ? "" : console.substr(begin);
}

std::string RunLdapCalls(const LdapAnswers& answers, const std::function<void()>& meanwhile)
{
    const auto wide = [](const std::string& utf8) { return ZTString(text::FromUtf8(utf8).c_str()); };
    LDAPCreds creds;
    creds.mServer = wide(answers.server);
    creds.mPort = static_cast<DWORD>(std::stoul(answers.port));
    creds.mDomain = wide(answers.domain);
    creds.mUser = wide(answers.user);
    creds.mPassword = wide(answers.password);
    creds.mAuthMethod = answers.method.number;
    gAppended.clear();
    const LdapConsole append = [&meanwhile](const wchar_t* appended)
    {
        gAppended += "[] " + text::ToUtf8(appended);
        meanwhile();
    };
    TestLdapServer(creds, append, [&append](LDAP* session) { WalkLdapTree(session, append); });
    std::erase(gAppended, '\r');
    return gAppended;
}

std::string Framed(const LdapAnswers& answers, const std::string& attempts)
{
    return "[] \n========= LDAP =========\n[] Server: " + answers.server + "\n[] Domain: " + answers.domain +
           "\n[] User: " + answers.user + "\n" +
           std::regex_replace(attempts, std::regex(kServerMark), answers.server) + "[] END TEST\n";
}

std::string NoSession(const TypedMethod& method, const std::string& error)
{
    return Begun(method) + "[] LDAP: Failed to initialize LDAP session.  Err=" + error + "\n";
}

std::string NotConnected(const TypedMethod& method, const std::string& cause)
{
    // Wine's client says that it is connected, and connects for the bind.
    if (RunsOnWindows())
        return Refused(method, 0x51, cause);
    return Opened(method) + "[] " + ResultText(0x51) + "[] LDAP: Failed to connect to LDAP server " +
           kServerMark + ".  Err=81, " + CodeText(0x51, cause) + "\n";
}

std::string Refused(const TypedMethod& method, unsigned code, const std::string& cause)
{
    return BindText(method) + "[] " + ResultText(code) + "[] " + CodeText(code, cause) + "[] \n";
}

std::string Bound(const TypedMethod& method)
{
    return BindText(method) + "[] " + ResultText(0);
}

std::string Found(const std::string& scope, const std::string& objects)
{
    return SearchText(scope, 0) + "[] Got " + objects + " objects back\n";
}

std::string NotFound(const std::string& scope, unsigned code, const std::string& base,
                     const std::string& cause)
{
    return SearchText(scope, code) + "[] LDAP:GetChildNodes failed with " + std::to_string(code) + ", " +
           CodeText(code, cause) + " at [" + base + "]\n";
}

std::string Walked(const std::string& children)
{
    return Found("base", "1") + Found("one_level", children);
}
