// SPDX-License-Identifier: MIT
// An FTP server on loopback that follows a script. It serves one connection after the other and keeps the
// dialogue and what was uploaded. The server itself is ftp-server, a process of its own on both systems.
#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/TestFolder.h"

#include <chrono>
#include <cstdint>
#include <map>

constexpr const char* kHangUp = "(hang up)";  // an answer that ends the control connection without a word
constexpr const char* kSilence = "(silence)"; // an answer that never comes
constexpr const char* kPause = "(pause)";     // what follows in an answer is a segment, 20 ms later

struct FtpScript
{
    std::string address = "127.0.0.1"; // where it listens
    std::string greeting = "220 Ready.\r\n";
    // Answers by verb, in place of the ordinary ones.
    std::map<std::string, std::string> answers{};
    bool inSingleBytes = false;
    std::chrono::milliseconds answerAfter{0}; // before each answer
    std::string deaf{}; // "EPSV", "EPSV PASV": whose ports take no connection and refuse none
    std::string passiveAddress = "127,0,0,1"; // what PASV says
    std::string directFrom = "127.0.0.1";     // whence it opens the data connection itself

    // At this byte of an upload: the answer, if any, goes out, then what is to happen happens.
    std::int64_t breakAt = -1;
    std::string breakAnswer{};
    // "reset": the data connection is reset; `farewell` follows. "close": it is closed in order, the rest
    // unread; `farewell` follows. "hang up": both connections go. "stall": nothing more is read or said.
    std::string atBreak = "reset";

    std::int64_t bytesPerSecond = 0; // 0: as fast as can be

    // What the server says when the data connection has ended, and how long after that.
    std::string farewell = "226 Received.\r\n";
    std::chrono::milliseconds farewellAfter{0};

    // With one, the server offers TLS: a file of certificates/, or "none" for one that knows no handshake. An
    // answer of its own to PROT is a refusal: the file then comes in plain.
    std::string certificate{};
    bool renewsKeys = false; // at the first bytes of an upload, where the dialogue goes on under TLS 1.3
};

class ScriptedFtpServer
{
public:
    // Port 0 takes a free one. A port that cannot be had ends the test program with a message.
    explicit ScriptedFtpServer(const FtpScript& script, std::uint16_t port = 0);
    ~ScriptedFtpServer();

    std::uint16_t Port() const { return mPort; }

    // All commands so far, and the bytes and the name of the latest upload.
    std::vector<std::string> Commands() const { return Lines(mFolder.Read("commands")); }
    std::string Uploaded() const { return mFolder.Read("uploaded"); }
    std::string UploadedName() const { return mFolder.Read("name"); }
    std::string Certificate() const { return mFolder.Read("certificate"); } // DER, once it has been shown

private:
    TestFolder mFolder;
    std::uint16_t mPort = 0;
};
