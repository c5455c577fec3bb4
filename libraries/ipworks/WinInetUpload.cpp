// SPDX-License-Identifier: MIT
// The upload on WinINet. It shows only what WinINet lets be seen: the server's answers, not the commands,
// and it knows neither TLS nor an extended passive mode.
#include "libraries/ipworks/LocalFile.h"
#include "libraries/ipworks/Upload.h"

#include <windows.h>
#include <wininet.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace
{

constexpr DWORD kConnectMilliseconds = 60 * 1000; // to connect and to log in
constexpr std::size_t kBufferBytes = 256 * 1024;

struct InternetCloser
{
    void operator()(void* handle) const { InternetCloseHandle(handle); }
};
using InternetHandle = std::unique_ptr<void, InternetCloser>;

// Ends a session by closing its handle when no call has come back for too long: WinINet's own time limits
// do not hold for every call.
class Watchdog
{
public:
    Watchdog(HINTERNET session, std::chrono::seconds limit)
        : mSession(session), mLimit(limit), mThread([this] { Watch(); })
    {
    }
    ~Watchdog()
    {
        {
            const std::lock_guard lock(mMutex);
            mDone = true;
        }
        mWake.notify_one();
        mThread.join();
        if (!mBitten)
            InternetCloseHandle(mSession);
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    void Moved() { mMovedAt = std::chrono::steady_clock::now(); }
    bool HasBitten() const { return mBitten; }

private:
    void Watch()
    {
        std::unique_lock lock(mMutex);
        while (!mDone)
        {
            const auto end = mMovedAt.load() + mLimit;
            if (std::chrono::steady_clock::now() >= end)
            {
                mBitten = true;
                InternetCloseHandle(mSession);
                return;
            }
            mWake.wait_until(lock, end);
        }
    }

    HINTERNET mSession;
    std::chrono::seconds mLimit;
    std::atomic<std::chrono::steady_clock::time_point> mMovedAt{std::chrono::steady_clock::now()};
    std::atomic<bool> mBitten{false};
    bool mDone = false;
    std::mutex mMutex;
    std::condition_variable mWake;
    std::thread mThread;
};

class WinInetUpload
{
public:
    WinInetUpload(const UploadJob& job, LocalFile& file, UploadEvents& events)
        : mJob(job), mFile(file), mEvents(events)
    {
    }

    UploadResult Run();

private:
    UploadResult Transfer(HINTERNET session);
    UploadResult Send(HINTERNET connection, HINTERNET target);
    bool Confirmed(HINTERNET connection);
    UploadResult Problem(DWORD error) const;
    int ReadAnswer();

    const UploadJob& mJob;
    LocalFile& mFile;
    UploadEvents& mEvents;
    Watchdog* mWatchdog = nullptr;
    int mAnswer = 0; // number of the latest answer, and its line
    std::string mAnswerLine;
};

void SetTimeout(HINTERNET session, DWORD option, DWORD milliseconds)
{
    InternetSetOptionW(session, option, &milliseconds, sizeof milliseconds);
}

UploadResult WinInetUpload::Run()
{
    const HINTERNET session = InternetOpenA("FTP", INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0);
    if (session == nullptr)
        return Problem(GetLastError());
    const auto stall = static_cast<DWORD>(std::chrono::milliseconds(mJob.stallLimit).count());
    SetTimeout(session, INTERNET_OPTION_CONNECT_TIMEOUT, std::min(kConnectMilliseconds, stall));
    for (const DWORD option : {INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT,
                               INTERNET_OPTION_DATA_SEND_TIMEOUT, INTERNET_OPTION_DATA_RECEIVE_TIMEOUT})
        SetTimeout(session, option, stall);

    UploadResult result;
    {
        Watchdog watchdog(session, mJob.stallLimit);
        mWatchdog = &watchdog;
        result = Transfer(session);
        mWatchdog = nullptr;
        if (result.code != kIPWorksOk && watchdog.HasBitten())
            result = {kIPWorksStalled,
                      "No byte moved for " + std::to_string(mJob.stallLimit.count()) + " seconds."};
    }
    mEvents.Status(kIPWorksDisconnected, "Disconnected");
    return result;
}

UploadResult WinInetUpload::Transfer(HINTERNET session)
{
    mEvents.Status(kIPWorksConnecting, "Connecting to " + mJob.host + ":" + std::to_string(mJob.port));
    const InternetHandle connection(InternetConnectA(
        session, mJob.host.c_str(), static_cast<INTERNET_PORT>(mJob.port), mJob.user.c_str(),
        mJob.password.c_str(), INTERNET_SERVICE_FTP, mJob.passive ? INTERNET_FLAG_PASSIVE : 0, 0));
    const DWORD connectError = GetLastError();
    ReadAnswer();
    if (!connection)
        return Problem(connectError);
    mEvents.Status(kIPWorksConnected, "Connected to " + mJob.host);
    mEvents.Status(kIPWorksLoggedIn, "Logged in as " + mJob.user);

    // A server without it goes on.
    FtpCommandA(connection.get(), FALSE, FTP_TRANSFER_TYPE_BINARY, "OPTS UTF8 ON", 0, nullptr);
    ReadAnswer();

    mEvents.Status(kIPWorksSending, "Sending " + mJob.remoteFile);
    HINTERNET target = FtpOpenFileA(connection.get(), mJob.remoteFile.c_str(), GENERIC_WRITE,
                                    FTP_TRANSFER_TYPE_BINARY | INTERNET_FLAG_RELOAD, 0);
    const DWORD openError = GetLastError();
    ReadAnswer();
    if (target == nullptr)
        return Problem(openError);
    return Send(connection.get(), target);
}

UploadResult WinInetUpload::Send(HINTERNET connection, HINTERNET target)
{
    InternetHandle open(target);
    std::vector<char> buffer(kBufferBytes);
    std::int64_t sent = 0;
    for (std::int64_t count = 0; (count = mFile.Read(buffer.data(), kBufferBytes)) != 0;)
    {
        if (count < 0)
            return {kIPWorksLocalFileFailed, "The local file cannot be read to its end."};
        for (std::int64_t done = 0; done < count;)
        {
            DWORD taken = 0;
            if (!InternetWriteFile(target, buffer.data() + done, static_cast<DWORD>(count - done), &taken) ||
                taken == 0)
            {
                const DWORD error = GetLastError();
                mAnswer = 0;
                open.reset(); // the server's last word comes with the end
                ReadAnswer();
                mEvents.FinalProgress(sent, mFile.Size());
                return Problem(error);
            }
            done += taken;
            sent += taken;
            mWatchdog->Moved();
            mEvents.Progress(sent, mFile.Size());
        }
    }
    mAnswer = 0;
    open.reset();
    ReadAnswer();
    const bool confirmed = Confirmed(connection);
    if (confirmed || sent > 0)
        mEvents.FinalProgress(sent, mFile.Size());
    if (!confirmed)
        return Problem(ERROR_INTERNET_CONNECTION_ABORTED);
    mEvents.Status(kIPWorksConfirmed, "The server has received " + mJob.remoteFile);
    return {};
}

// The end of a transfer gives no result of its own: the server's answer tells, or, where WinINet keeps it
// to itself, the size that the server then has.
bool WinInetUpload::Confirmed(HINTERNET connection)
{
    if (mAnswer >= 200)
        return mAnswer == 226 || mAnswer == 250;
    const std::string question = "SIZE " + mJob.remoteFile;
    FtpCommandA(connection, FALSE, FTP_TRANSFER_TYPE_BINARY, question.c_str(), 0, nullptr);
    return ReadAnswer() == 213 && mAnswerLine.substr(4) == std::to_string(mFile.Size());
}

// Takes the server's latest answer apart into lines. Gives its number, 0 when there is none.
int WinInetUpload::ReadAnswer()
{
    mWatchdog->Moved();
    DWORD error = 0;
    DWORD length = 0;
    InternetGetLastResponseInfoA(&error, nullptr, &length);
    std::string text(length + 1, '\0');
    DWORD capacity = length + 1;
    if (length == 0 || !InternetGetLastResponseInfoA(&error, text.data(), &capacity))
        return 0;
    text.resize(capacity);

    std::string_view rest = text;
    while (!rest.empty())
    {
        const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (line.empty())
            continue;
        mEvents.Answer(line);
        if (const int number = AnswerNumber(line); number != 0)
        {
            mAnswer = number;
            mAnswerLine = line;
        }
    }
    return mAnswer;
}

UploadResult WinInetUpload::Problem(DWORD error) const
{
    if (mAnswer >= 400)
        return {mAnswer, mAnswerLine};
    const std::string number = " (" + std::to_string(error) + ")";
    switch (error)
    {
    case ERROR_INTERNET_NAME_NOT_RESOLVED:
        return {kIPWorksHostNotFound, "Could not resolve host: " + mJob.host + number};
    case ERROR_INTERNET_CANNOT_CONNECT:
    case WSAECONNREFUSED:
        return {kIPWorksConnectFailed, "Could not connect to " + mJob.host + number};
    case ERROR_INTERNET_TIMEOUT:
        return {kIPWorksStalled, "The server does not answer" + number};
    case ERROR_INTERNET_CONNECTION_ABORTED:
    case ERROR_INTERNET_CONNECTION_RESET:
        return {kIPWorksConnectionLost, "The connection was lost" + number};
    default:
        return {kIPWorksOtherFailure, "The transfer failed" + number};
    }
}

} // namespace

UploadResult RunUpload(const UploadJob& job, LocalFile& file, UploadEvents& events)
{
    return WinInetUpload(job, file, events).Run();
}
