// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedFtpServer.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

constexpr std::chrono::milliseconds kWait{5};
constexpr int kWaits = 6000;

ScriptedFtpServer::ScriptedFtpServer(const FtpScript& script, std::uint16_t port)
{
    const std::pair<std::string, std::string> keys[] = {
        {"port", std::to_string(port)},
        {"address", script.address},
        {"greeting", script.greeting},
        {"inSingleBytes", std::to_string(script.inSingleBytes)},
        {"answerAfter", std::to_string(script.answerAfter.count())},
        {"deaf", script.deaf},
        {"passiveAddress", script.passiveAddress},
        {"directFrom", script.directFrom},
        {"breakAt", std::to_string(script.breakAt)},
        {"breakAnswer", script.breakAnswer},
        {"atBreak", script.atBreak},
        {"bytesPerSecond", std::to_string(script.bytesPerSecond)},
        {"farewell", script.farewell},
        {"farewellAfter", std::to_string(script.farewellAfter.count())},
        {"certificate", script.certificate},
        {"renewsKeys", std::to_string(script.renewsKeys)},
    };
    for (const auto& [key, value] : keys)
        mFolder.Write("script/" + key, value);
    for (const auto& [verb, answer] : script.answers)
        mFolder.Write("answers/" + verb, answer);
    mFolder.Write("alive", "");
    const ChildProcess process(L"/usr/bin/python3 -ISB \"" TAVO_SUPPORT_DIR L"/ftp-server\"", mFolder.Path());
    for (int i = 0; i < kWaits && mPort == 0; ++i)
    {
        std::this_thread::sleep_for(kWait);
        mPort = static_cast<std::uint16_t>(std::atoi(mFolder.Read("port").c_str()));
    }
    if (mPort == 0)
    {
        std::fprintf(stderr, "no FTP server on port %u\n", static_cast<unsigned>(port));
        std::abort();
    }
}

ScriptedFtpServer::~ScriptedFtpServer()
{
    fs::remove(mFolder.Path() / "alive");
    for (int i = 0; i < kWaits && fs::exists(mFolder.Path() / "port"); ++i)
        std::this_thread::sleep_for(kWait);
}
