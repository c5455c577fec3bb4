// SPDX-License-Identifier: MIT
// The upload on libcurl. It drives the protocol; what is ours is the reading of its dialogue (which answer
// belongs to which step), the rule for a stalled transfer, and naming what went wrong.
#include "libraries/ipworks/CertificateCheck.h"
#include "libraries/ipworks/LocalFile.h"
#include "libraries/ipworks/Sockets.h"
#include "libraries/ipworks/Upload.h"

#include <curl/curl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr long kConnectSeconds = 60; // to connect and to log in
constexpr long kKeepAliveSeconds = 30;
constexpr std::chrono::milliseconds kLastWordWait{1000};
constexpr std::chrono::milliseconds kDrainInterval{20};

struct CurlDeleter
{
    void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    void operator()(char* text) const { curl_free(text); }
};
using CurlHandle = std::unique_ptr<CURL, CurlDeleter>;
using CurlList = std::unique_ptr<curl_slist, CurlDeleter>;
using CurlText = std::unique_ptr<char, CurlDeleter>;

bool InitialiseOnce()
{
    static const bool done = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    return done;
}

// From 7.87.0 on and before 8.0.0 the file would go out in plain text on a connection that the server opened
// (https://github.com/curl/curl/issues/10666).
bool ForgetsToEncrypt()
{
    const unsigned version = curl_version_info(CURLVERSION_NOW)->version_num;
    return version >= 0x075700 && version < 0x080000;
}

class CurlUpload
{
public:
    CurlUpload(const UploadJob& job, LocalFile& file, UploadEvents& events)
        : mJob(job), mFile(file), mEvents(events), mCertificate(job, events)
    {
    }

    UploadResult Run();

private:
    bool Prepare();
    UploadResult Judge(CURLcode code) const;

    // What libcurl calls.
    static int OnDebug(CURL*, curl_infotype type, char* data, std::size_t size, void* self);
    static std::size_t OnRead(char* buffer, std::size_t size, std::size_t count, void* self);
    static int OnProgress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent);
    static CURLcode OnTls(CURL*, void* sslContext, void* self);
    static int OnSocket(void* self, curl_socket_t socket, curlsocktype purpose);
    static int OnCloseSocket(void* self, curl_socket_t socket);

    void Command(std::string_view line);
    void Answer(std::string_view line);
    void ReadLastWord();
    bool Stop(int code, std::string_view text);
    void Moved() { mMovedAt = Clock::now(); }
    bool HasStalled();
    bool Drain();

    const UploadJob& mJob;
    LocalFile& mFile;
    UploadEvents& mEvents;
    CertificateCheck mCertificate;
    CurlHandle mCurl;
    CurlList mCommands;
    char mProblem[CURL_ERROR_SIZE] = {};

    // Sockets, owned by libcurl: the control connection, known from the greeting on, and the latest two
    // that were made. Once there is a data connection, it is the latest.
    int mControl = -1;
    int mLatest = -1;
    int mBeforeLatest = -1;
    bool mSecured = false; // the control connection is encrypted
    bool mLeaves = false;  // all is over: the answer to QUIT tells nothing of the upload
    int mAnswer = 0;       // number of the answer to the latest command, and its line
    std::string mAnswerLine;
    bool mAwaitsEnd = false; // the transfer has begun and the server has not said how it ended
    UploadResult mStopped;   // why a callback ended the transfer
    std::int64_t mSent = 0;
    std::int64_t mArrived = 0; // bytes that the server's system has acknowledged
    Clock::time_point mMovedAt = Clock::now();
};

UploadResult CurlUpload::Run()
{
    if (!InitialiseOnce())
        return {kIPWorksOtherFailure, "The transfer library cannot be started."};
    if (!Prepare())
        return {kIPWorksOtherFailure, "Out of memory."};

    mEvents.Status(kIPWorksConnecting, "Connecting to " + mJob.host + ":" + std::to_string(mJob.port));
    const BrokenPipeBlock block;
    Moved();
    const CURLcode code = curl_easy_perform(mCurl.get());

    curl_off_t sent = 0;
    curl_easy_getinfo(mCurl.get(), CURLINFO_SIZE_UPLOAD_T, &sent);
    UploadResult result = Judge(code);
    // Of an empty file, the confirmation is all the progress that there is.
    if (sent > 0 || result.code == kIPWorksOk)
        mEvents.FinalProgress(sent, mFile.Size());
    mCurl.reset();
    mEvents.Status(kIPWorksDisconnected, "Disconnected");
    return result;
}

bool CurlUpload::Prepare()
{
    mCurl.reset(curl_easy_init());
    // "*": a server without it goes on.
    mCommands.reset(curl_slist_append(nullptr, "*OPTS UTF8 ON"));
    if (!mCurl || !mCommands)
        return false;
    CURL* curl = mCurl.get();
    const CurlText name(
        curl_easy_escape(curl, mJob.remoteFile.c_str(), static_cast<int>(mJob.remoteFile.size())));
    if (!name)
        return false;
    const bool isAddress6 = mJob.host.find(':') != std::string::npos;
    const std::string url = "ftp://" + (isAddress6 ? "[" + mJob.host + "]" : mJob.host) + ":" +
                            std::to_string(mJob.port) + "/" + name.get();

    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "ftp");
    curl_easy_setopt(curl, CURLOPT_PROXY, "");
    curl_easy_setopt(curl, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    curl_easy_setopt(curl, CURLOPT_USERNAME, mJob.user.c_str());
    curl_easy_setopt(curl, CURLOPT_PASSWORD, mJob.password.c_str());
    curl_easy_setopt(curl, CURLOPT_QUOTE, mCommands.get());
    curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl, CURLOPT_FTP_SKIP_PASV_IP, 1L);
    if (!mJob.passive)
        curl_easy_setopt(curl, CURLOPT_FTPPORT, "-"); // the address that the control connection has

    // The certificate is judged by the owner, in our own check.
    curl_easy_setopt(curl, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_TRY));
    curl_easy_setopt(curl, CURLOPT_FTPSSLAUTH, static_cast<long>(CURLFTPAUTH_TLS));
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 0L);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 0L);
    curl_easy_setopt(curl, CURLOPT_SSL_CTX_FUNCTION, &CurlUpload::OnTls);
    curl_easy_setopt(curl, CURLOPT_SSL_CTX_DATA, this);

    const long stallSeconds = static_cast<long>(mJob.stallLimit.count());
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
    curl_easy_setopt(curl, CURLOPT_SERVER_RESPONSE_TIMEOUT, stallSeconds);
    curl_easy_setopt(curl, CURLOPT_ACCEPTTIMEOUT_MS, stallSeconds * 1000L);
    curl_easy_setopt(curl, CURLOPT_TCP_KEEPALIVE, 1L);
    curl_easy_setopt(curl, CURLOPT_TCP_KEEPIDLE, kKeepAliveSeconds);
    curl_easy_setopt(curl, CURLOPT_TCP_KEEPINTVL, kKeepAliveSeconds);
    // Ends the connection within the call, so that its last commands are under the same rules as all others.
    curl_easy_setopt(curl, CURLOPT_FORBID_REUSE, 1L);

    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, mProblem);
    curl_easy_setopt(curl, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(curl, CURLOPT_DEBUGFUNCTION, &CurlUpload::OnDebug);
    curl_easy_setopt(curl, CURLOPT_DEBUGDATA, this);
    curl_easy_setopt(curl, CURLOPT_READFUNCTION, &CurlUpload::OnRead);
    curl_easy_setopt(curl, CURLOPT_READDATA, this);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, &CurlUpload::OnProgress);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, this);
    curl_easy_setopt(curl, CURLOPT_SOCKOPTFUNCTION, &CurlUpload::OnSocket);
    curl_easy_setopt(curl, CURLOPT_SOCKOPTDATA, this);
    curl_easy_setopt(curl, CURLOPT_CLOSESOCKETFUNCTION, &CurlUpload::OnCloseSocket);
    curl_easy_setopt(curl, CURLOPT_CLOSESOCKETDATA, this);
    return true;
}

// What went wrong, in the order of who knows best: we ourselves, the server, the library.
UploadResult CurlUpload::Judge(CURLcode code) const
{
    if (code == CURLE_OK)
        return {};
    if (mStopped.code != kIPWorksOk)
        return mStopped;
    if (mCertificate.Refused())
        return {kIPWorksSecurityFailed, "The server's certificate was not approved."};
    if (mAnswer >= 400)
        return {mAnswer, mAnswerLine};

    // In direct mode libcurl 7.88 leaves a message about the listening socket there, before anything has
    // failed.
    const std::string text = mJob.passive && mProblem[0] != '\0' ? mProblem : curl_easy_strerror(code);
    switch (code)
    {
    case CURLE_COULDNT_RESOLVE_HOST:
        return {kIPWorksHostNotFound, text};
    case CURLE_COULDNT_CONNECT:
    case CURLE_FTP_ACCEPT_FAILED:
    case CURLE_FTP_ACCEPT_TIMEOUT:
        return {kIPWorksConnectFailed, text};
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_USE_SSL_FAILED:
        return {kIPWorksSecurityFailed, text};
    case CURLE_OPERATION_TIMEDOUT:
        return {kIPWorksStalled, text};
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
        return {kIPWorksConnectionLost, text};
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_FTP_WEIRD_PASS_REPLY:
    case CURLE_FTP_WEIRD_PASV_REPLY:
    case CURLE_FTP_WEIRD_227_FORMAT:
        return {kIPWorksUnexpectedAnswer, text};
    default:
        return {kIPWorksOtherFailure, text};
    }
}

int CurlUpload::OnDebug(CURL*, curl_infotype type, char* data, std::size_t size, void* self)
{
    CurlUpload& upload = *static_cast<CurlUpload*>(self);
    if (type != CURLINFO_TEXT)
        upload.Moved();
    if (type == CURLINFO_HEADER_OUT)
        upload.Command({data, size});
    else if (type == CURLINFO_HEADER_IN)
        upload.Answer({data, size});
    return 0;
}

void CurlUpload::Command(std::string_view line)
{
    if (mAnswer == 234 && !mSecured)
    {
        mSecured = true;
        mEvents.Status(kIPWorksSecured, "The connection is encrypted");
    }
    mLeaves = line.substr(0, 4) == "QUIT";
    if (!mLeaves)
        mAnswer = 0;
    mEvents.Command(line);
}

void CurlUpload::Answer(std::string_view line)
{
    mEvents.Answer(line);
    const int number = AnswerNumber(line);
    if (number == 0 || mLeaves)
        return;
    mAnswer = number;
    mAnswerLine = line;
    if (number == 220 && mControl < 0)
    {
        mControl = mLatest; // attempts at other addresses are closed by now
        mEvents.Status(kIPWorksConnected, "Connected to " + mJob.host);
    }
    else if (number == 230 || number == 232)
        mEvents.Status(kIPWorksLoggedIn, "Logged in as " + mJob.user);
    else if (number == 125 || number == 150)
    {
        mAwaitsEnd = true;
        mEvents.Status(kIPWorksSending, "Sending " + mJob.remoteFile);
    }
    else if (mAwaitsEnd)
    {
        mAwaitsEnd = false;
        if (number == 226 || number == 250)
            mEvents.Status(kIPWorksConfirmed, "The server has received " + mJob.remoteFile);
    }
}

std::size_t CurlUpload::OnRead(char* buffer, std::size_t size, std::size_t count, void* self)
{
    CurlUpload& upload = *static_cast<CurlUpload*>(self);
    const std::int64_t bytes = upload.mFile.Read(buffer, static_cast<std::int64_t>(size * count));
    if (bytes < 0)
        upload.Stop(kIPWorksLocalFileFailed, "The local file cannot be read to its end.");
    const bool goesOn = bytes > 0 || (bytes == 0 && upload.Drain());
    return goesOn ? static_cast<std::size_t>(bytes) : CURL_READFUNC_ABORT;
}

int CurlUpload::OnProgress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent)
{
    CurlUpload& upload = *static_cast<CurlUpload*>(self);
    upload.mSent = sent;
    upload.mEvents.Progress(sent, upload.mFile.Size());
    return upload.HasStalled() ? 1 : 0;
}

CURLcode CurlUpload::OnTls(CURL*, void* sslContext, void* self)
{
    static_cast<CurlUpload*>(self)->mCertificate.Attach(sslContext);
    return CURLE_OK;
}

int CurlUpload::OnSocket(void* self, curl_socket_t socket, curlsocktype purpose)
{
    CurlUpload& upload = *static_cast<CurlUpload*>(self);
    upload.mBeforeLatest = upload.mLatest;
    upload.mLatest = socket;
    if (purpose != CURLSOCKTYPE_ACCEPT)
        return CURL_SOCKOPT_OK;
    // Whoever connects first to our open port would get the file.
    if (!SamePeer(socket, upload.mControl))
        upload.Stop(kIPWorksConnectFailed, "A stranger opened the data connection.");
    else if (upload.mSecured && ForgetsToEncrypt())
        upload.Stop(kIPWorksSecurityFailed, "This libcurl cannot encrypt a data connection in direct mode.");
    return upload.mStopped.code == kIPWorksOk ? CURL_SOCKOPT_OK : CURL_SOCKOPT_ERROR;
}

int CurlUpload::OnCloseSocket(void* self, curl_socket_t socket)
{
    CurlUpload& upload = *static_cast<CurlUpload*>(self);
    if (socket == upload.mControl)
        upload.ReadLastWord();
    if (socket == upload.mLatest)
        upload.mLatest = upload.mBeforeLatest;
    return close(socket);
}

// A server that breaks a transfer off says why, but libcurl hears it no more once the data connection has
// failed. An encrypted answer stays unread.
void CurlUpload::ReadLastWord()
{
    if (!mAwaitsEnd || mSecured || mStopped.code != kIPWorksOk)
        return;
    pollfd control{mControl, POLLIN, 0};
    char answer[1024];
    if (poll(&control, 1, static_cast<int>(kLastWordWait.count())) != 1)
        return;
    const ssize_t length = recv(mControl, answer, sizeof answer, MSG_DONTWAIT);
    std::string_view rest(answer, length > 0 ? static_cast<std::size_t>(length) : 0);
    for (std::size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n'))
    {
        Answer(rest.substr(0, end + 1));
        rest.remove_prefix(end + 1);
    }
}

bool CurlUpload::Stop(int code, std::string_view text)
{
    if (mStopped.code == kIPWorksOk)
        mStopped = {code, std::string(text)};
    return false;
}

// A byte has moved when the other side's system has acknowledged it: what our own system has taken can wait
// there for long on a slow line.
bool CurlUpload::HasStalled()
{
    const std::int64_t arrived = mSent - UnacknowledgedBytes(mLatest);
    if (arrived != mArrived)
    {
        mArrived = arrived;
        Moved();
    }
    if (Clock::now() - mMovedAt < mJob.stallLimit)
        return false;
    Stop(kIPWorksStalled, "No byte moved for " + std::to_string(mJob.stallLimit.count()) + " seconds.");
    return true;
}

// Waits until the server's system has everything, since libcurl's time for the last answer begins then.
// False when the connection stalls meanwhile.
bool CurlUpload::Drain()
{
    while (UnacknowledgedBytes(mLatest) > 0)
    {
        if (HasStalled())
            return false;
        pollfd data{mLatest, 0, 0};
        if (poll(&data, 1, static_cast<int>(kDrainInterval.count())) > 0)
            return true; // broken: libcurl finds out how
    }
    return true;
}

} // namespace

UploadResult RunUpload(const UploadJob& job, LocalFile& file, UploadEvents& events)
{
    return CurlUpload(job, file, events).Run();
}
