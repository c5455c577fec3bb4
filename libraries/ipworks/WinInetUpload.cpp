// SPDX-License-Identifier: MIT
// The upload on WinINet. It shows only what WinINet lets be seen: the server's answers, not the commands,
// and it knows neither TLS nor an extended passive mode.
#include "libraries/ipworks/CallThread.h"
#include "libraries/ipworks/LocalFile.h"
#include "libraries/ipworks/Upload.h"

#include <windows.h>
#include <wininet.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <system_error>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr DWORD kConnectMilliseconds = 60 * 1000; // to connect and to log in
constexpr std::int64_t kBufferBytes = 256 * 1024;
// What one call of WinINet is to send: a slow line must get so much away within the stall limit.
constexpr std::int64_t kPieceBytes = 16 * 1024;

struct InternetCloser
{
    void operator()(void* handle) const { InternetCloseHandle(handle); }
};
using InternetHandle = std::unique_ptr<void, InternetCloser>;

// What the calls of WinINet work on, which a call that is left behind keeps to itself.
struct Session
{
    explicit Session(const UploadJob& wanted) : job(wanted), buffer(kBufferBytes) {}

    const UploadJob job;
    std::atomic<HINTERNET> root{nullptr}; // closing it ends a call that is under way on another thread
    InternetHandle connection;
    InternetHandle target;
    std::vector<char> buffer;
    std::int64_t count = 0; // bytes in the buffer that are to be sent
    std::atomic<std::int64_t> sent{0};

    // What the latest call came to, with the reason if it failed, and all that the server has said to it.
    bool worked = false;
    DWORD error = ERROR_SUCCESS;
    std::string response;
};

// Each call gives false when it failed; the thread's last error is then the reason.
using Call = bool (*)(Session&);

void SetTimeout(HINTERNET session, DWORD option, DWORD milliseconds)
{
    InternetSetOptionW(session, option, &milliseconds, sizeof milliseconds);
}

bool Connect(Session& session)
{
    const UploadJob& job = session.job;
    const HINTERNET root = InternetOpenA("FTP", INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0);
    if (root == nullptr)
        return false;
    session.root = root;
    const auto stall = static_cast<DWORD>(std::chrono::milliseconds(job.stallLimit).count());
    SetTimeout(root, INTERNET_OPTION_CONNECT_TIMEOUT, std::min(kConnectMilliseconds, stall));
    for (const DWORD option : {INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT,
                               INTERNET_OPTION_DATA_SEND_TIMEOUT, INTERNET_OPTION_DATA_RECEIVE_TIMEOUT})
        SetTimeout(root, option, stall);
    session.connection.reset(InternetConnectA(root, job.host.c_str(), static_cast<INTERNET_PORT>(job.port),
                                              job.user.c_str(), job.password.c_str(), INTERNET_SERVICE_FTP,
                                              job.passive ? INTERNET_FLAG_PASSIVE : 0, 0));
    return session.connection != nullptr;
}

bool Command(Session& session, const std::string& line)
{
    return FtpCommandA(session.connection.get(), FALSE, FTP_TRANSFER_TYPE_BINARY, line.c_str(), 0, nullptr);
}

bool OfferUtf8(Session& session)
{
    return Command(session, "OPTS UTF8 ON");
}

bool OpenTarget(Session& session)
{
    session.target.reset(FtpOpenFileA(session.connection.get(), session.job.remoteFile.c_str(), GENERIC_WRITE,
                                      FTP_TRANSFER_TYPE_BINARY | INTERNET_FLAG_RELOAD, 0));
    return session.target != nullptr;
}

bool Write(Session& session)
{
    for (std::int64_t done = 0; done < session.count;)
    {
        DWORD taken = 0;
        const auto piece = static_cast<DWORD>(std::min(kPieceBytes, session.count - done));
        if (!InternetWriteFile(session.target.get(), session.buffer.data() + done, piece, &taken) ||
            taken == 0)
            return false;
        done += taken;
        session.sent += taken;
    }
    return true;
}

// Ends the transfer; the server's last word comes with it.
bool CloseTarget(Session& session)
{
    session.target.reset();
    return true;
}

bool AskForSize(Session& session)
{
    return Command(session, "SIZE " + session.job.remoteFile);
}

bool CloseAll(Session& session)
{
    session.target.reset();
    session.connection.reset();
    if (const HINTERNET root = session.root.exchange(nullptr); root != nullptr)
        InternetCloseHandle(root);
    return true;
}

// WinINet keeps it for each thread.
std::string LastResponse()
{
    DWORD error = 0;
    DWORD length = 0;
    InternetGetLastResponseInfoA(&error, nullptr, &length);
    std::string text(length + 1, '\0');
    DWORD capacity = length + 1;
    if (length == 0 || !InternetGetLastResponseInfoA(&error, text.data(), &capacity))
        return {};
    text.resize(capacity);
    return text;
}

class WinInetUpload
{
public:
    WinInetUpload(const UploadJob& job, LocalFile& file, UploadEvents& events)
        : mJob(job), mFile(file), mEvents(events), mSession(std::make_shared<Session>(job))
    {
    }

    UploadResult Run();

private:
    bool Do(Call call);
    bool HasStalled();
    void ReadAnswer();
    bool Transfer();
    bool Send();
    bool Confirmed();
    UploadResult Problem() const;

    const UploadJob& mJob;
    LocalFile& mFile;
    UploadEvents& mEvents;
    std::shared_ptr<Session> mSession;
    // The calls' own: WinINet's time limits do not hold for every one of them.
    CallThread mThread;
    bool mStalled = false;
    Clock::time_point mMovedAt = Clock::now();
    std::int64_t mMoved = 0;
    DWORD mError = 0; // of the latest call that failed
    int mAnswer = 0;  // number of the latest call's last answer, and its line
    std::string mAnswerLine;
};

UploadResult WinInetUpload::Run()
{
    UploadResult result;
    if (!Transfer())
        result = Problem();
    if (!mStalled)
        Do(CloseAll);
    mEvents.Status(kIPWorksDisconnected, "Disconnected");
    return result;
}

// False when the call failed, or did not come back.
bool WinInetUpload::Do(Call call)
{
    mAnswer = 0;
    mMovedAt = Clock::now();
    mStalled = !mThread.Run(
        [session = mSession, call]
        {
            SetLastError(ERROR_SUCCESS); // not every failure has a reason
            session->worked = call(*session);
            session->error = GetLastError();
            session->response = LastResponse();
        },
        [this] { return !HasStalled(); });
    if (mStalled)
    {
        if (const HINTERNET root = mSession->root.exchange(nullptr); root != nullptr)
            InternetCloseHandle(root);
        return false;
    }
    ReadAnswer();
    if (!mSession->worked)
        mError = mSession->error;
    return mSession->worked;
}

bool WinInetUpload::HasStalled()
{
    const std::int64_t sent = mSession->sent;
    if (sent != mMoved)
    {
        mMoved = sent;
        mMovedAt = Clock::now();
        mEvents.Progress(sent, mFile.Size());
    }
    return Clock::now() - mMovedAt >= mJob.stallLimit;
}

bool WinInetUpload::Transfer()
{
    mEvents.Status(kIPWorksConnecting, "Connecting to " + mJob.host + ":" + std::to_string(mJob.port));
    if (!Do(Connect))
        return false;
    mEvents.Status(kIPWorksConnected, "Connected to " + mJob.host);
    mEvents.Status(kIPWorksLoggedIn, "Logged in as " + mJob.user);
    // A server without it goes on.
    if (!Do(OfferUtf8) && mStalled)
        return false;
    mEvents.Status(kIPWorksSending, "Sending " + mJob.remoteFile);
    if (!Do(OpenTarget))
        return false;

    const bool confirmed = Send() && Confirmed();
    const std::int64_t sent = mSession->sent;
    if (confirmed || sent > 0)
        mEvents.FinalProgress(sent, mFile.Size());
    if (confirmed)
        mEvents.Status(kIPWorksConfirmed, "The server has received " + mJob.remoteFile);
    return confirmed;
}

bool WinInetUpload::Send()
{
    while ((mSession->count = mFile.Read(mSession->buffer.data(), kBufferBytes)) > 0)
    {
        if (!Do(Write))
        {
            if (!mStalled)
                Do(CloseTarget);
            return false;
        }
        mEvents.Progress(mSession->sent, mFile.Size());
    }
    return mSession->count == 0 && Do(CloseTarget);
}

// The end of a transfer gives no result of its own: the server's answer tells, or, where WinINet keeps it
// to itself, the size that the server then has.
bool WinInetUpload::Confirmed()
{
    mError = ERROR_INTERNET_CONNECTION_ABORTED;
    if (mAnswer >= 200)
        return mAnswer == 226 || mAnswer == 250;
    Do(AskForSize);
    return mAnswer == 213 && mAnswerLine.substr(4) == std::to_string(mFile.Size());
}

// Takes what the server has said to the latest call apart into lines.
void WinInetUpload::ReadAnswer()
{
    std::string_view rest = mSession->response;
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
}

UploadResult WinInetUpload::Problem() const
{
    if (mStalled)
        return {kIPWorksStalled,
                "No byte moved for " + std::to_string(mJob.stallLimit.count()) + " seconds."};
    if (mSession->count < 0)
        return {kIPWorksLocalFileFailed, "The local file cannot be read to its end."};
    if (mAnswer >= 400)
        return {mAnswer, mAnswerLine};
    const std::string number = " (" + std::to_string(mError) + ")";
    switch (mError)
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
    case WSAECONNABORTED:
    case WSAECONNRESET:
        return {kIPWorksConnectionLost, "The connection was lost" + number};
    case ERROR_SUCCESS: // given up for no reason but what the server said
    case ERROR_HTTP_INVALID_SERVER_RESPONSE:
        return {kIPWorksUnexpectedAnswer,
                "The server's answer makes no sense" + (mAnswerLine.empty() ? "." : ": " + mAnswerLine)};
    default:
        return {kIPWorksConnectionLost, "The server is not heard any more" + number};
    }
}

} // namespace

UploadResult RunUpload(const UploadJob& job, LocalFile& file, UploadEvents& events)
{
    try
    {
        return WinInetUpload(job, file, events).Run();
    }
    catch (const std::system_error& error) // no thread for the calls
    {
        return {kIPWorksConnectFailed, error.what()};
    }
}
