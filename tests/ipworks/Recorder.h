// SPDX-License-Identifier: MIT
// A component with all its events written down, one line each, set to send a file to a scripted server.
#pragma once

#include "libraries/ipworks/IPWorks.h"
#include "tests/support/ScriptedFtpServer.h"

#include <gmock/gmock.h>

constexpr const char* kTestPassword = "Kesto-42";

// Whether this machine has an address ::1.
inline bool HasIPv6()
{
    return ReadFile("/proc/net/if_inet6").find("00000000000000000000000000000001 ") != std::string::npos;
}

class Recorder
{
public:
    explicit Recorder(FtpScript script = {}, const std::string& content = "content")
        : server(std::move(script)), mHandle(IPWorks_FTP_Create(&Recorder::OnEvent, this))
    {
        WriteFile(File(), content);
        Config("CodePage=65001");
        Config("RemotePort=" + std::to_string(server.Port()));
        // By the numbers that the interface fixes.
        SetText(42, "zt-ftp");
        SetText(25, kTestPassword);
        SetText(27, "127.0.0.1");
        SetText(26, "archive.zip");
        SetLocalFile(File());
    }
    ~Recorder() { IPWorks_FTP_Destroy(mHandle); }

    int Config(const std::string& setting) { return Do(4, setting.c_str()); }
    int SetText(int id, const char* text) { return Set(id, const_cast<char*>(text)); }
    int SetNumber(int id, int number) { return Set(id, Value(number)); }
    int SetLocalFile(const fs::path& path) { return Set(10021, path.wstring().data()); }
    int Do(int method, const char* parameter = nullptr)
    {
        void* params[] = {const_cast<char*>(parameter), nullptr};
        int lengths[] = {0};
        return IPWorks_FTP_Do(mHandle, method, parameter == nullptr ? 0 : 1, params, lengths, 0);
    }
    int Upload() { return Do(20); }
    // In passive or direct mode; the events are then those of this upload alone.
    int UploadIn(int passive)
    {
        events.clear();
        SetNumber(24, passive);
        return Upload();
    }
    std::string LastError() const { return IPWorks_FTP_GetLastError(mHandle); }

    const fs::path& Directory() const { return mDirectory.Path(); }
    fs::path File() const { return Directory() / "archive.zip"; }

    ScriptedFtpServer server;

    // "status 4 Logged in", "error 530 ...", "> USER x", "< 230 ...", "approve problem"; no progress.
    std::vector<std::string> events;
    std::vector<std::string> Of(const std::string& kind) const
    {
        std::vector<std::string> found;
        for (const std::string& event : events)
            if (event.starts_with(kind + " "))
                found.push_back(event);
        return found;
    }

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
    int Set(int id, void* value) { return IPWorks_FTP_Set(mHandle, id, 0, value, 0); }
    static int Number(void* param) { return static_cast<int>(reinterpret_cast<std::intptr_t>(param)); }
    static std::string Text(void* param) { return static_cast<const char*>(param); }
    static void* Value(int number) { return reinterpret_cast<void*>(static_cast<std::intptr_t>(number)); }
    static int OnEvent(void* object, int eventId, int paramCount, void* params[], int lengths[])
    {
        Recorder& recorder = *static_cast<Recorder*>(object);
        const auto note = [&recorder](const std::string& line) { recorder.events.push_back(line); };
        constexpr int kParameters[] = {0, 3, 0, 0, 2, 2, 5, 1, 1, 4}; // of each event
        EXPECT_EQ(paramCount, kParameters[eventId]);
        switch (eventId)
        {
        case 1: // the state
            EXPECT_EQ("Control", Text(params[0]));
            note("status " + std::to_string(Number(params[1])) + " " + Text(params[2]));
            break;
        case 4: // a failure
            note("error " + std::to_string(Number(params[0])) + " " + Text(params[1]));
            break;
        case 5: // a line of the dialogue
            EXPECT_LE(Number(params[0]), 1);
            note((Number(params[0]) == 0 ? "> " : "< ") + Text(params[1]));
            break;
        case 6: // a certificate to approve
            note("approve " + Text(params[3]));
            recorder.certificate.assign(static_cast<const char*>(params[0]),
                                        static_cast<std::size_t>(lengths[0]));
            recorder.subject = Text(params[1]);
            recorder.issuer = Text(params[2]);
            EXPECT_EQ(Number(params[4]), Text(params[3]).empty() ? 1 : 0);
            params[4] = Value(recorder.approves ? 1 : 0);
            break;
        case 7: // the start
            note("started " + Text(params[0]));
            break;
        case 8: // the end
            note("ended " + std::to_string(Number(params[0])));
            break;
        case 9: // progress
            EXPECT_EQ("0", std::to_string(Number(params[0])) + Text(params[3]));
            recorder.progress.push_back({std::chrono::steady_clock::now(),
                                         *static_cast<std::int64_t*>(params[1]), Number(params[2])});
            break;
        default:
            note("unknown event " + std::to_string(eventId));
        }
        return 0;
    }

    TestFolder mDirectory{"tavo-test-"};
    void* mHandle;
};
