// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedFtpServer.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

constexpr std::chrono::milliseconds kWait{5};
constexpr int kWaits = 6000;

static std::string Hex(const std::string& text)
{
    constexpr const char* kDigits = "0123456789abcdef";
    std::string hex;
    for (const char c : text)
        hex += {kDigits[static_cast<unsigned char>(c) >> 4U], kDigits[static_cast<unsigned char>(c) & 15U]};
    return hex;
}

static std::string Line(const std::string& key, const std::string& value)
{
    return Hex(key) + " " + Hex(value) + "\n";
}

ScriptedFtpServer::ScriptedFtpServer(const FtpScript& script, std::uint16_t port)
{
    std::string text = Line("port", std::to_string(port)) + Line("greeting", script.greeting) +
                       Line("inSingleBytes", std::to_string(script.inSingleBytes)) +
                       Line("passiveAddress", script.passiveAddress) + Line("directFrom", script.directFrom) +
                       Line("breakAt", std::to_string(script.breakAt)) +
                       Line("breakAnswer", script.breakAnswer) + Line("atBreak", script.atBreak) +
                       Line("bytesPerSecond", std::to_string(script.bytesPerSecond)) +
                       Line("farewell", script.farewell) +
                       Line("farewellAfter", std::to_string(script.farewellAfter.count())) +
                       Line("certificate", script.certificate);
    for (const auto& [verb, answer] : script.answers)
        text += Hex("answer") + " " + Line(verb, answer);
    mFolder.Write("script", text);
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
    std::filesystem::remove(mFolder.Path() / "alive");
    for (int i = 0; i < kWaits && std::filesystem::exists(mFolder.Path() / "port"); ++i)
        std::this_thread::sleep_for(kWait);
}
