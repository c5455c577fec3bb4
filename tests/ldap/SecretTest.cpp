// SPDX-License-Identifier: MIT
// What is left of a password in the memory of the program that ships after a test.
#include "tests/ldap/LdapConsole.h"
#include "tests/support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <thread>

#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

TEST(Password, IsGoneFromMemoryASecondAfterTheTest)
{
    const char* port = std::getenv("TAVO_LDAP_PORT");
    const char* tlsPort = std::getenv("TAVO_LDAPS_PORT");
    if (port == nullptr || getuid() != 0)
        GTEST_SKIP() << "needs slapd, and root to read the memory of another process";
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer keeps what is given back";
#endif
    const rlimit anySize{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_CORE, &anySize), 0);
    // Its beginning is lost where memory is given back.
    const std::string password = "\xF0\x9F\x98\x80 Forty characters with a tail at their end";
    const std::string tail = password.substr(password.size() - 12, 10);
    const std::string whole = "cn=wordy,dc=one,dc=example";
    using Input = std::vector<std::string>;
    const auto both = [](Input first, const Input& second)
    {
        first.insert(first.end(), second.begin(), second.end());
        return first;
    };
    const auto typed = [&](const std::string& at, const TypedMethod& method, const std::string& as) {
        return Typed({at, as, password, method});
    };
    // A port that is none is told in a box of its own, after which the dialog goes on.
    const Input refused = both(typed("no number", kSimplePlain, whole), {"OK"});
    const Input other = Typed({port, whole, "other", kSimplePlain});
    const Input longer = Typed({port, whole, std::string(100, 'o'), kSimplePlain});
    // What is tested, the input, and whether the libraries overwrite all that they give back.
    const std::tuple<const char*, Input, bool> kCases[] = {
        {"SSL", typed(tlsPort, kSimpleSsl, whole), true},
        {"plain text", typed(port, kSimplePlain, whole), true},
        {"Digest", typed(port, kDigest, "wordy"), true},
        {"DPA", typed(port, kDpa, "wordy"), true},
        {"NTLM", typed(port, kNtlm, "wordy"), false},
        {"Negotiate", typed(port, kNegotiate, "wordy"), false},
        {"a cancelled dialog", both(both(refused, {"Cancel"}), other), true},
        {"a second password", both(refused, Input(other.begin() + 1, other.end())), true},
        {"a longer one", both(refused, Input(longer.begin() + 1, longer.end())), true},
    };
    for (const auto& [what, input, keepsFreed] : kCases)
    {
        SCOPED_TRACE(what);
        std::string memory;
        ProgramStart start;
        start.input = input;
        if (keepsFreed)
            start.environment = {{"LD_PRELOAD", TAVO_KEEP_FREED}};
        start.signal = SIGABRT;
        start.signalWhen = [&memory](const std::string& console, int process)
        {
            if (console.find("END TEST") == std::string::npos)
                return false;
            std::this_thread::sleep_for(std::chrono::seconds(1));
            memory = MemoryOf(process);
            return true;
        };
        const ProgramFolder folder;
        EXPECT_FALSE(folder.Run(start).leftAnImage);
        const auto holds = [&memory](const std::string& text)
        { return memory.find(text) != std::string::npos; };
        EXPECT_TRUE(holds(Widened("END TEST", sizeof(wchar_t)))); // what is to be found is found
        EXPECT_FALSE(holds(tail));
        EXPECT_FALSE(holds(Widened(tail, 2)));
        EXPECT_FALSE(holds(Widened(tail, sizeof(wchar_t))));
    }
}
