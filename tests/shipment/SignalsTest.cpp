// SPDX-License-Identifier: MIT
#include "tests/shipment/ShipmentRun.h"
#include "tests/support/LdapPeer.h"
#include "tests/support/ScriptedFtpServer.h"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

using testing::HasSubstr;

static std::function<bool(const std::string&, int)> Shows(const std::string& text)
{
    return [text](const std::string& console, int) { return console.find(text) != std::string::npos; };
}

using Signals = ShipmentTest;

TEST_F(Signals, EndARunInOrderInEachOfItsStates)
{
    WriteFile(Logs() / "old.log", "old");
    MakeOld(Logs() / "old.log");
    WriteFile(Logs() / "big.log", RandomBytes(3000000));
    const auto expectOrderlyEnd =
        [&](const std::string& state, ProgramStart start, const std::vector<int>& signals)
    {
        for (const int number : signals)
        {
            const std::string name = std::string("SIG") + sigabbrev_np(number);
            SCOPED_TRACE(state + ", " + name);
            fs::remove(Logs() / "Tavo.log");
            fs::remove(folder.Path() / "archiver");
            start.signal = number;
            const ProgramOutcome outcome = folder.Run(start);
            ASSERT_EQ(outcome.exitCode, -number) << outcome.console;
            EXPECT_LT(outcome.secondsAfterSignal, 2.0);
            EXPECT_THAT(folder.Log(), HasSubstr(": ended by " + name + "\n"));
            for (const auto& entry : fs::directory_iterator(Logs()))
                EXPECT_THAT(entry.path().filename(), testing::AnyOf("Tavo.log", "old.log", "big.log"));
            EXPECT_FALSE(IsHeld(L"Global\\Tavo_FTP") || IsHeld(L"Global\\Tavo_ForceCoreDump"));
        }
    };

    expectOrderlyEnd("box", {.arguments = {"-FORCE_DEBUG_DUMP"}, .signalWhen = Shows("Are you sure")},
                     {SIGINT});

    const auto dumps = [](const std::string&, int) { return IsHeld(L"Global\\Tavo_ForceCoreDump"); };
    expectOrderlyEnd("forced dump", {.arguments = {"-FORCE_DEBUG_DUMP_SILENT"}, .signalWhen = dumps},
                     {SIGTERM});

    const LdapPeer silent([](Connection& peer) { peer.ReadRequest(), peer.ReadRequest(); });
    const std::string test = "LDAP ...\nLDAP Server=127.0.0.1\nPort=" + std::to_string(silent.Port()) +
                             "\nUsername=a\nPassword=b\nAuthentication=Digest\nOK";
    expectOrderlyEnd("LDAP call", {.input = Lines(test), .signalWhen = Shows("ldap_bind_s(Digest) begin")},
                     {SIGQUIT});

    const std::vector<std::string> ship = {"-FTP_LOG=case", "-AUTOCLOSE=yes"};
    const std::string id = (folder.Path() / "archiver").string();
    const fs::path whole = folder.Path() / "whole";
    ReplaceArchiver("[ ! -e '" + whole.string() + "' ] || exec \"$REAL\" \"$@\"; echo half > case.zip; " +
                    "echo half > case.zip.tmp; echo $$ > '" + id + "'; exec sleep 60");
    const auto packs = [&id](const std::string&, int) { return !ReadFile(id).empty(); };
    expectOrderlyEnd("packing", {.arguments = ship, .signalWhen = packs}, {SIGINT, SIGTERM, SIGHUP, SIGQUIT});
    EXPECT_TRUE(EndsSoon(ReadFile(id)));

    WriteFile(whole, "");
    ScriptedFtpServer server({.bytesPerSecond = 200000}, kFtpPort);
    expectOrderlyEnd("sending", {.arguments = ship, .signalWhen = Shows("% done, ")}, {SIGHUP});
}

TEST_F(Signals, ThatWereIgnoredFromTheStartStayIgnored)
{
    // As nohup(1) starts it; then the end of input closes the console.
    const ProgramOutcome outcome = folder.Run({.signal = SIGHUP,
                                               .signalWhen = Shows("System default locale"),
                                               .ignoredSignals = {SIGHUP, SIGCHLD, SIGXFSZ}});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.console;
    EXPECT_THAT(folder.Log(), HasSubstr("finished tavo app"));
}

// As root the program must not load what its caller's environment names. Whoever opens this one waits.
TEST_F(Signals, EnvironmentNamesNoCodeToLoad)
{
    const fs::path pipe = folder.Path() / "openssl.cnf";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    LdapPeer peer([](Connection& connection) { connection.ReadRequest(); });
    const ProgramOutcome outcome =
        folder.Run({.input = {"LDAP ...", "LDAP Server=127.0.0.1", "Port=" + std::to_string(peer.Port()),
                              "Authentication=Simple bind - SSL", "OK"},
                    .environment = {{"OPENSSL_CONF", pipe.string()}, {"SASL_PATH", pipe.string()}},
                    .limit = std::chrono::seconds(20)});
    EXPECT_TRUE(outcome.ended);
    EXPECT_THAT(outcome.console, HasSubstr("END TEST"));
}
