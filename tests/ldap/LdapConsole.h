// SPDX-License-Identifier: MIT
// The LDAP test as its user sees it: what is typed into the dialog, and what the console says of each step.
#pragma once

#include "ldap/LDAPCreds.h"

// The combo box's text, its number, and what the console calls the bind.
struct TypedMethod
{
    const char* text;
    eLDAPAuthMethod number;
    const char* call;
};
inline constexpr TypedMethod kTryAll{"Try all", eLDAPAuthMethod{0}, ""};
inline constexpr TypedMethod kSimpleSsl{"Simple bind - SSL", eLDAPAuthMethod{1}, "ldap_simple_bind_s"};
inline constexpr TypedMethod kSimplePlain{"Simple bind - plain text", eLDAPAuthMethod{6},
                                          "ldap_bind_s(plain text)"};
inline constexpr TypedMethod kNtlm{"NTLM", eLDAPAuthMethod{3}, "ldap_bind_s(NTLM)"};
inline constexpr TypedMethod kDigest{"Digest", eLDAPAuthMethod{4}, "ldap_bind_s(Digest)"};
inline constexpr TypedMethod kDpa{"DPA", eLDAPAuthMethod{5}, "ldap_bind_s(DPA)"};
inline constexpr TypedMethod kNegotiate{"Negotiate", eLDAPAuthMethod{7}, "ldap_bind_s(negotiate)"};

struct LdapAnswers
{
    std::string port;
    std::string user;
    std::string password;
    TypedMethod method;
    std::string server = "localhost";
    std::string domain{};
    std::string button = "OK";
};

// The lines of input that open the dialog, fill it and press its button.
std::vector<std::string> Typed(const LdapAnswers& answers);

// Runs the program, presses the LDAP button and gives the test's part of the console, "[] " for each prefix.
std::string RunLdapTest(const LdapAnswers& answers,
                        const std::vector<std::pair<std::string, std::string>>& environment = {});

// Makes the calls of a test in this process and gives its text, which grows in gAppended. Also for Wine,
// whose windows take seconds for what the client does at once. `meanwhile` runs at each append, as what the
// console's messages do.
std::string RunLdapCalls(
    const LdapAnswers& answers, const std::function<void()>& meanwhile = [] {});
extern std::string gAppended;

// The text of a test with what its attempts say.
std::string Framed(const LdapAnswers& answers, const std::string& attempts);

// One attempt each; `cause` is what follows the code's text where the client tells it.
std::string NoSession(const TypedMethod& method, const std::string& error);
std::string NotConnected(const TypedMethod& method, const std::string& cause);
std::string Refused(const TypedMethod& method, unsigned code, const std::string& cause = {});
std::string Bound(const TypedMethod& method);

// One search each; `scope` is "base" or "one_level".
std::string Found(const std::string& scope, const std::string& objects);
std::string NotFound(const std::string& scope, unsigned code, const std::string& base,
                     const std::string& cause = {});
// The walk after a bind: one root entry, and what the second search gave.
std::string Walked(const std::string& children);
