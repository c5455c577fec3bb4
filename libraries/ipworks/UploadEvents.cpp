// SPDX-License-Identifier: MIT
#include "libraries/ipworks/HarmlessText.h"
#include "libraries/ipworks/Upload.h"

#include <cstdint>

namespace
{

constexpr std::chrono::milliseconds kProgressInterval{100};
constexpr int kMostAnswerLines = 100;
constexpr int kCommand = 0;
constexpr int kAnswer = 1;

void* AsParameter(int number)
{
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(number));
}

// Event records have no const texts; the owner only reads them.
void* AsParameter(const std::string& text)
{
    return const_cast<char*>(text.c_str());
}

} // namespace

int AnswerNumber(std::string_view line)
{
    const auto digit = [&line](std::size_t i) { return line[i] >= '0' && line[i] <= '9'; };
    if (line.size() < 4 || line[3] != ' ' || !digit(0) || !digit(1) || !digit(2))
        return 0;
    return (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
}

UploadEvents::UploadEvents(IPWorksEventSink sink, void* object, const UploadJob& job)
    : mSink(sink), mObject(object), mJob(job)
{
}

void UploadEvents::Status(IPWorksState state, std::string_view description)
{
    const std::string connection = "Control";
    const std::string text = Harmless(description);
    void* params[] = {AsParameter(connection), AsParameter(state), AsParameter(text)};
    int lengths[3] = {};
    mSink(mObject, kIPWorksStatus, 3, params, lengths);
}

void UploadEvents::Failure(const UploadResult& result)
{
    const std::string text = Harmless(result.text);
    void* params[] = {AsParameter(result.code), AsParameter(text)};
    int lengths[2] = {};
    mSink(mObject, kIPWorksFailure, 2, params, lengths);
}

void UploadEvents::Command(std::string_view line)
{
    constexpr std::string_view kPassword = "PASS ";
    mAnswerLines = 0;
    Dialogue(kCommand, line.substr(0, kPassword.size()) == kPassword ? "PASS ****" : line);
}

void UploadEvents::Answer(std::string_view line)
{
    ++mAnswerLines;
    if (mAnswerLines <= kMostAnswerLines)
        Dialogue(kAnswer, line);
    else if (mAnswerLines == kMostAnswerLines + 1)
        Dialogue(kAnswer, "...");
}

void UploadEvents::Dialogue(int direction, std::string_view line)
{
    const std::string text = Harmless(line);
    void* params[] = {AsParameter(direction), AsParameter(text)};
    int lengths[2] = {};
    mSink(mObject, kIPWorksDialogue, 2, params, lengths);
}

bool UploadEvents::Approve(std::string_view certificate, std::string_view subject, std::string_view issuer,
                           std::string_view problem)
{
    const std::string block(certificate);
    const std::string subjectText = Harmless(subject);
    const std::string issuerText = Harmless(issuer);
    const std::string problemText = Harmless(problem);
    const int decision = problem.empty() ? 1 : 0;
    void* params[] = {AsParameter(block), AsParameter(subjectText), AsParameter(issuerText),
                      AsParameter(problemText), AsParameter(decision)};
    int lengths[5] = {static_cast<int>(block.size())};
    mSink(mObject, kIPWorksApprove, 5, params, lengths);
    return reinterpret_cast<std::intptr_t>(params[4]) != 0;
}

void UploadEvents::Started()
{
    const std::string text = Harmless(mJob.remoteFile);
    void* params[] = {AsParameter(text)};
    int lengths[1] = {};
    mSink(mObject, kIPWorksStarted, 1, params, lengths);
}

void UploadEvents::Ended(int code)
{
    void* params[] = {AsParameter(code)};
    int lengths[1] = {};
    mSink(mObject, kIPWorksEnded, 1, params, lengths);
}

void UploadEvents::Progress(std::int64_t sent, std::int64_t total)
{
    if (sent <= 0 || sent == mReported)
        return;
    if (sent < total && std::chrono::steady_clock::now() - mReportedAt < kProgressInterval)
        return;
    ReportProgress(sent, total);
}

void UploadEvents::FinalProgress(std::int64_t sent, std::int64_t total)
{
    if (sent != mReported && (sent > 0 || total == 0))
        ReportProgress(sent, total);
}

void UploadEvents::ReportProgress(std::int64_t sent, std::int64_t total)
{
    mReported = sent;
    mReportedAt = std::chrono::steady_clock::now();
    const int percent = total == 0 ? 100 : static_cast<int>(sent * 100 / total);
    const std::string none;
    std::int64_t count = sent;
    void* params[] = {AsParameter(0), &count, AsParameter(percent), AsParameter(none)};
    int lengths[4] = {};
    mSink(mObject, kIPWorksProgress, 4, params, lengths);
}

std::string UploadEvents::Harmless(std::string_view text) const
{
    return MakeHarmless(text, mJob.password);
}
