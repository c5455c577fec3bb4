// SPDX-License-Identifier: MIT
// An FTP server on loopback that follows a script: each row of a table of faults is one script. It serves
// one connection after the other and keeps the whole dialogue and what was uploaded.
#pragma once

#include "tests/support/TcpStream.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// An answer that ends the control connection without a word.
constexpr const char* kHangUp = "(hang up)";
// An answer that never comes.
constexpr const char* kSilence = "(silence)";
// Within an answer: what follows is a segment of its own, 20 ms later.
constexpr const char* kPause = "(pause)";

struct FtpScript
{
    std::string greeting = "220 Ready.\r\n";
    // Answers by verb, in place of the ordinary ones.
    std::map<std::string, std::string> answers{};
    bool inSingleBytes = false;
    std::string passiveAddress = "127,0,0,1"; // what PASV says

    // At this byte of an upload: the answer, if any, goes out, then what is to happen happens.
    std::int64_t breakAt = -1;
    std::string breakAnswer{};
    enum class Break
    {
        eReset,  // the data connection is reset; `farewell` follows
        eClose,  // the data connection is closed in order, the rest unread; `farewell` follows
        eHangUp, // both connections go
        eStall,  // nothing more is read or said
    } atBreak = Break::eReset;

    std::int64_t bytesPerSecond = 0; // 0: as fast as can be

    // What the server says when the data connection has ended, and how long after that.
    std::string farewell = "226 Received.\r\n";
    std::chrono::milliseconds farewellAfter{0};

    // Makes a secure stream of a plain one, null when the handshake fails; without it AUTH is refused.
    std::function<std::unique_ptr<Stream>(std::unique_ptr<TcpStream>)> secure{};
};

class ScriptedFtpServer
{
public:
    explicit ScriptedFtpServer(FtpScript script, std::uint16_t port = 0);
    ~ScriptedFtpServer();
    ScriptedFtpServer(const ScriptedFtpServer&) = delete;
    ScriptedFtpServer& operator=(const ScriptedFtpServer&) = delete;

    std::uint16_t Port() const { return mListener.Port(); }

    // All commands so far, and the bytes and the name of the latest upload.
    std::vector<std::string> Commands() const { return Guarded(mCommands); }
    std::string Uploaded() const { return Guarded(mUploaded); }
    std::string UploadedName() const { return Guarded(mUploadedName); }

private:
    class Session;
    void Serve();
    template <class T>
    T Guarded(const T& value) const
    {
        const std::lock_guard lock(mMutex);
        return value;
    }

    const FtpScript mScript;
    TcpListener mListener;
    std::atomic<bool> mEnd{false};
    mutable std::mutex mMutex; // guards the three below
    std::vector<std::string> mCommands;
    std::string mUploaded;
    std::string mUploadedName;
    std::thread mThread;
};
