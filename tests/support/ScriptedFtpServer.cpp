// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedFtpServer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>

namespace
{

// The port in "127,0,0,1,18,103" or "|1|127.0.0.1|4711|".
std::uint16_t PortOf(const std::string& address)
{
    unsigned high = 0;
    unsigned low = 0;
    if (std::sscanf(address.c_str(), "%*u,%*u,%*u,%*u,%u,%u", &high, &low) != 2)
        std::sscanf(address.c_str(), "|%*u|%*[^|]|%u|", &low);
    return static_cast<std::uint16_t>(high << 8U | low);
}

} // namespace

class ScriptedFtpServer::Session
{
public:
    Session(ScriptedFtpServer& server, std::unique_ptr<TcpStream> control)
        : mServer(server), mScript(server.mScript), mPlain(std::move(control)), mControl(mPlain.get())
    {
    }

    void Run()
    {
        // With 421 a server closes the connection.
        if (!Say(mScript.greeting) || mScript.greeting.rfind("421", 0) == 0)
            return;
        while (const std::optional<std::string> line = ReadLine())
        {
            {
                const std::lock_guard lock(mServer.mMutex);
                mServer.mCommands.push_back(*line);
            }
            const std::size_t blank = line->find(' ');
            const std::string verb = line->substr(0, blank);
            const std::string rest = blank == std::string::npos ? "" : line->substr(blank + 1);
            if (!Obey(verb, rest))
                return;
        }
    }

private:
    // False ends the session.
    bool Obey(const std::string& verb, const std::string& rest)
    {
        const auto scripted = mScript.answers.find(verb);
        if (scripted != mScript.answers.end())
            return Say(scripted->second);
        if (verb == "STOR")
            return Store(rest);
        if (verb == "AUTH")
            return Secure(rest);
        if (verb == "QUIT")
            return Say("221 Bye.\r\n") && false;
        if (verb == "EPRT" || verb == "PORT")
        {
            mPeerPort = PortOf(rest);
            return Say("200 Noted.\r\n");
        }
        if (verb == "EPSV" || verb == "PASV")
        {
            mPassive = std::make_unique<TcpListener>(std::uint16_t{0});
            const unsigned port = mPassive->Port();
            return Say(verb == "EPSV"
                           ? "229 Come in (|||" + std::to_string(port) + "|).\r\n"
                           : "227 Come in (" + mScript.passiveAddress + "," + std::to_string(port >> 8U) +
                                 "," + std::to_string(port & 0xFFU) + ").\r\n");
        }
        static const std::map<std::string, std::string> kOrdinary = {
            {"USER", "331 Password?\r\n"}, {"PASS", "230 Welcome.\r\n"}, {"PWD", "257 \"/\" is here.\r\n"},
            {"TYPE", "200 Binary.\r\n"},   {"OPTS", "200 On.\r\n"},      {"PBSZ", "200 0.\r\n"},
            {"PROT", "200 Private.\r\n"},  {"SYST", "215 UNIX\r\n"},     {"FEAT", "502 None.\r\n"}};
        const auto ordinary = kOrdinary.find(verb);
        return Say(ordinary == kOrdinary.end() ? "500 What?\r\n" : ordinary->second);
    }

    bool Secure(const std::string& mechanism)
    {
        if (!mScript.secure || mechanism != "TLS")
            return Say("500 No.\r\n");
        if (!Say("234 Shake hands.\r\n"))
            return false;
        mSecured = mScript.secure(std::move(mPlain));
        mControl = mSecured.get();
        return mControl != nullptr;
    }

    bool Store(const std::string& name)
    {
        const std::string answer = "150 Go on.\r\n";
        std::unique_ptr<TcpStream> plain = mPeerPort != 0 ? TcpStream::Connect(mPeerPort) : nullptr;
        while (mPeerPort == 0 && !plain && !mServer.mEnd)
            plain = mPassive->Accept();
        mPeerPort = 0;
        if (!plain)
            return Say("425 No data connection.\r\n");
        if (mScript.breakAt == 0 && mScript.atBreak == FtpScript::Break::eReset)
        {
            plain->Reset();
            plain.reset();
            return Say(answer) && Say(mScript.farewell);
        }
        if (!Say(answer))
            return false;
        std::unique_ptr<Stream> data;
        if (mSecured)
            data = mScript.secure(std::move(plain));
        else
            data = std::move(plain);
        if (!data)
            return Say("522 No secure data connection.\r\n");
        {
            const std::lock_guard lock(mServer.mMutex);
            mServer.mUploaded.clear();
            mServer.mUploadedName = name;
        }
        return Receive(std::move(data));
    }

    bool Receive(std::unique_ptr<Stream> data)
    {
        std::vector<char> buffer(65536);
        std::int64_t count = 0;
        const auto start = std::chrono::steady_clock::now();
        while (!mServer.mEnd)
        {
            const std::int64_t room =
                mScript.breakAt < 0 ? std::int64_t(buffer.size()) : mScript.breakAt - count;
            if (room <= 0)
                return Break(std::move(data));
            const int got =
                data->Receive(buffer.data(), static_cast<int>(std::min(room, std::int64_t(buffer.size()))));
            if (got == 0)
                break;
            if (got > 0)
            {
                const std::lock_guard lock(mServer.mMutex);
                mServer.mUploaded.append(buffer.data(), static_cast<std::size_t>(got));
                count += got;
                if (mScript.bytesPerSecond > 0)
                    std::this_thread::sleep_until(
                        start + std::chrono::milliseconds(count * 1000 / mScript.bytesPerSecond));
            }
        }
        data.reset();
        std::this_thread::sleep_for(mScript.farewellAfter);
        return Say(mScript.farewell);
    }

    bool Break(std::unique_ptr<Stream> data)
    {
        if (!mScript.breakAnswer.empty() && !Say(mScript.breakAnswer))
            return false;
        switch (mScript.atBreak)
        {
        case FtpScript::Break::eStall:
            return Say(kSilence);
        case FtpScript::Break::eHangUp:
            data->Reset();
            return false;
        case FtpScript::Break::eReset:
            data->Reset();
            break;
        case FtpScript::Break::eClose:
            break;
        }
        data.reset();
        return mScript.breakAnswer.empty() ? Say(mScript.farewell) : true;
    }

    bool Say(const std::string& answer)
    {
        if (answer == kHangUp)
            return false;
        if (answer == kSilence)
        {
            // Until the other side gives up.
            while (ReadLine())
            {
            }
            return false;
        }
        if (const std::size_t pause = answer.find(kPause); pause != std::string::npos)
        {
            if (!mControl->Send(answer.substr(0, pause)))
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            return Say(answer.substr(pause + std::strlen(kPause)));
        }
        if (!mScript.inSingleBytes)
            return mControl->Send(answer);
        for (const char c : answer)
        {
            if (!mControl->Send({&c, 1}))
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }

    std::optional<std::string> ReadLine()
    {
        for (;;)
        {
            const std::size_t end = mPending.find("\r\n");
            if (end != std::string::npos)
            {
                std::string line = mPending.substr(0, end);
                mPending.erase(0, end + 2);
                return line;
            }
            char buffer[4096];
            const int got = mControl->Receive(buffer, sizeof buffer);
            if (got == 0 || mServer.mEnd)
                return std::nullopt;
            if (got > 0)
                mPending.append(buffer, static_cast<std::size_t>(got));
        }
    }

    ScriptedFtpServer& mServer;
    const FtpScript& mScript;
    std::unique_ptr<TcpStream> mPlain;
    std::unique_ptr<Stream> mSecured;
    Stream* mControl;
    std::unique_ptr<TcpListener> mPassive;
    std::uint16_t mPeerPort = 0;
    std::string mPending;
};

ScriptedFtpServer::ScriptedFtpServer(FtpScript script, std::uint16_t port)
    : mScript(std::move(script)), mListener(port), mThread([this] { Serve(); })
{
}

ScriptedFtpServer::~ScriptedFtpServer()
{
    mEnd = true;
    mThread.join();
}

void ScriptedFtpServer::Serve()
{
    while (!mEnd)
        if (std::unique_ptr<TcpStream> control = mListener.Accept())
            Session(*this, std::move(control)).Run();
}
