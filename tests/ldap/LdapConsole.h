// SPDX-License-Identifier: MIT
// The LDAP test as its user sees it: what is typed into the dialog, and what the console says, put together
// from the steps.
#pragma once

#include <string>
#include <utility>
#include <vector>

// The texts of the combo box.
inline const std::string kTryAll = "Try all";
inline const std::string kSimpleSsl = "Simple bind - SSL";
inline const std::string kSimplePlain = "Simple bind - plain text";
inline const std::string kNtlm = "NTLM";
inline const std::string kDigest = "Digest";
inline const std::string kDpa = "DPA";
inline const std::string kNegotiate = "Negotiate";

struct LdapAnswers
{
    std::string server;
    std::string port;
    std::string domain;
    std::string user;
    std::string password;
    std::string method;
    std::string button = "OK";
};

// The lines of input that open the dialog, fill it and press its button.
std::vector<std::string> Typed(const LdapAnswers& answers);

// Runs the program, presses the LDAP button and gives the test's part of the console, less the prefixes.
std::string RunLdapTest(const LdapAnswers& answers,
                        const std::vector<std::pair<std::string, std::string>>& environment = {});

// Makes the calls of a test in this process and gives its text. For Wine, whose windows take seconds for what
// the client does at once.
std::string RunLdapCalls(const LdapAnswers& answers);

// The text of a test with what its attempts say.
std::string Framed(const LdapAnswers& answers, const std::string& attempts);

// One attempt each; `cause` is what stands behind the code's text where the client tells it.
std::string NoSession(const std::string& method);
std::string NotConnected(const std::string& method, const std::string& cause);
std::string Refused(const std::string& method, unsigned code, const std::string& cause);
std::string Bound(const std::string& method);

// The walk after a bind: one root entry and so many below the last context, or the code that the second
// search gave.
std::string Walked(int children);
std::string WalkRefused(unsigned code, const std::string& base);
