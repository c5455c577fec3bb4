// SPDX-License-Identifier: MIT
// One upload: what is asked for, what comes of it, and the one function that each system has of its own.
#pragma once

#include "libraries/ipworks/IPWorks.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

class LocalFile;

struct UploadJob
{
    std::string user;
    std::string password;
    std::string host;
    int port = 21;
    bool passive = true;
    std::string remoteFile;
    std::wstring localFile;
    std::chrono::seconds stallLimit{60}; // without a byte moved, in either direction
};

struct UploadResult
{
    int code = kIPWorksOk; // an IPWorksResult, or a server's answer from 400 to 599
    std::string text;      // what went wrong; for a server's answer the line itself
};

// The number of an answer's last line, "226 Done."; 0 for another line.
int AnswerNumber(std::string_view line);

// Hands events to the component's owner. All texts are made harmless here, and the password is hidden.
class UploadEvents
{
public:
    UploadEvents(IPWorksEventSink sink, void* object, const UploadJob& job);

    void Status(IPWorksState state, std::string_view description);
    void Failure(const UploadResult& result);
    void Command(std::string_view line);
    // An answer may have any number of lines; those of one answer that no person would read are left out.
    void Answer(std::string_view line);
    bool Approve(std::string_view certificate, std::string_view subject, std::string_view issuer,
                 std::string_view problem);
    void Started();
    void Ended(int code);
    // `sent` of `total` bytes are with the connection. Reported at most every 100 ms, and at once when
    // complete.
    void Progress(std::int64_t sent, std::int64_t total);
    // The count at the end, reported if it differs from the last one.
    void FinalProgress(std::int64_t sent, std::int64_t total);

private:
    void Dialogue(int direction, std::string_view line);
    void ReportProgress(std::int64_t sent, std::int64_t total);
    std::string Harmless(std::string_view text) const;

    IPWorksEventSink mSink;
    void* mObject;
    const UploadJob& mJob;
    int mAnswerLines = 0;
    std::int64_t mReported = -1;
    std::chrono::steady_clock::time_point mReportedAt{};
};

// Sends `file` and blocks until the end. Raises the events of the connection and the dialogue, the approval
// and the progress. Success only if the server confirmed the whole file after its last byte.
UploadResult RunUpload(const UploadJob& job, LocalFile& file, UploadEvents& events);
