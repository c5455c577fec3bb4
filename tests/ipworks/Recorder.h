// SPDX-License-Identifier: MIT
// A component with all its events written down, one line each, set to send a file to a scripted server.
#pragma once

#include "libraries/ipworks/IPWorks.h"
#include "tests/support/ScriptedFtpServer.h"
#include "tests/support/TestFolder.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

constexpr const char* kTestPassword = "Kesto-42";

class Recorder
{
public:
    explicit Recorder(FtpScript script = {}, const std::string& content = "content");
    ~Recorder() { IPWorks_FTP_Destroy(mHandle); }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    int Config(const std::string& setting);
    int SetText(int property, const char* text);
    int SetNumber(int property, int number);
    int SetLocalFile(const std::filesystem::path& path);
    int Do(int method, const char* parameter = nullptr);
    int Upload() { return Do(kIPWorksUpload); }
    std::string LastError() const { return IPWorks_FTP_GetLastError(mHandle); }

    const std::filesystem::path& Directory() const { return mDirectory.Path(); }
    std::filesystem::path File() const { return Directory() / "archive.zip"; }

    ScriptedFtpServer server;

    // "status 4 Logged in", "error 530 ...", "> USER x", "< 230 ...", "approve problem", "started name",
    // "ended 0". Progress is not among them.
    std::vector<std::string> events;
    std::vector<std::string> Of(const std::string& kind) const;

    struct Progress
    {
        std::chrono::steady_clock::time_point at;
        std::int64_t bytes;
        int percent;
    };
    std::vector<Progress> progress;

    std::string certificate; // of the latest approval, with its subject and issuer
    std::string subject;
    std::string issuer;
    bool approves = true;

private:
    static int OnEvent(void* object, int eventId, int paramCount, void* params[], int lengths[]);

    TestFolder mDirectory{"tavo-test-"};
    void* mHandle;
};
