// SPDX-License-Identifier: MIT
// A component with all its events written down, one line each, and an upload on it in one call.
#pragma once

#include "libraries/ipworks/IPWorks.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

constexpr const char* kTestPassword = "Kesto-42";

class Recorder
{
public:
    // Set to a server on 127.0.0.1 with user and password, passive.
    explicit Recorder(std::uint16_t port);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    int Config(const char* setting);
    int SetText(int property, const char* text);
    int SetNumber(int property, int number);
    int SetLocalFile(const std::filesystem::path& path);
    int Upload();
    std::string LastError() const { return IPWorks_FTP_GetLastError(mHandle); }
    void* Handle() const { return mHandle; }

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

    void* mHandle;
};

// A file of its own that is gone with the object.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& content, const std::filesystem::path& name = "archive.zip");
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const std::filesystem::path& Path() const { return mPath; }

private:
    std::filesystem::path mPath;
};

// Bytes that differ from place to place.
std::string TestBytes(std::size_t count);
