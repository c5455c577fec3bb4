// SPDX-License-Identifier: MIT
// The upload on libcurl. It drives the protocol; what is ours is the reading of its dialogue (which answer
// belongs to which step), the server's last word when a transfer breaks, the rule for a stalled transfer, and
// naming what went wrong.
#include "base/Deadline.h"
#include "base/Owned.h"
#include "libraries/ipworks/CertificateCheck.h"
#include "libraries/ipworks/LocalFile.h"
#include "libraries/ipworks/Sockets.h"
#include "libraries/ipworks/Upload.h"

#include <curl/curl.h>
#include <openssl/err.h>
#include <openssl/ssl.h>

#include <utility>

namespace
{

using std::chrono::milliseconds;

constexpr long kKeepAliveSeconds = 30;
constexpr milliseconds kLastWordWait{1000};
constexpr std::chrono::seconds kGoodbyeWait{5};
constexpr std::size_t kLongestLastWord = 65536;
constexpr milliseconds kDrainInterval{2};

using CurlHandle = Owned<CURL, curl_easy_cleanup>;
using CurlList = Owned<curl_slist, curl_slist_free_all>;
using CurlText = Owned<char, curl_free>;

bool InitialiseOnce()
{
    static const bool done = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    return done;
}

// The certificate check works on OpenSSL's own objects.
bool HasOpenSsl()
{
    const char* library = curl_version_info(CURLVERSION_NOW)->ssl_version;
    return library != nullptr && std::string_view(library).substr(0, 8) == "OpenSSL/";
}

// Bytes received by SSL_read, or left there by SSL_peek; 0 when none are there yet, -1 when none will come.
int ReceiveTls(SSL* tls, int (*receive)(SSL*, void*, int), char* buffer, int capacity)
{
    ERR_clear_error();
    const int length = receive(tls, buffer, capacity);
    if (length > 0)
        return length;
    const int error = SSL_get_error(tls, length);
    return error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE ? 0 : -1;
}

// While it lives, a session, which may be null, reads and writes its socket: libcurl's own way to that is
// open to libcurl alone, and is put back in the end.
class OnItsSocket
{
public:
    OnItsSocket(SSL* session, curl_socket_t socket) : mSession(session)
    {
        if (mSession == nullptr)
            return;
        mRead = SSL_get_rbio(mSession);
        mWrite = SSL_get_wbio(mSession);
        BIO_up_ref(mRead);
        BIO_up_ref(mWrite);
        mIsSet = SSL_set_fd(mSession, static_cast<int>(socket)) == 1;
    }
    ~OnItsSocket()
    {
        if (mSession == nullptr)
            return;
        SSL_set0_rbio(mSession, mRead);
        SSL_set0_wbio(mSession, mWrite);
    }
    OnItsSocket(const OnItsSocket&) = delete;
    OnItsSocket& operator=(const OnItsSocket&) = delete;

    SSL* Get() const { return mIsSet ? mSession : nullptr; }

private:
    SSL* mSession;
    BIO* mRead = nullptr;
    BIO* mWrite = nullptr;
    bool mIsSet = false;
};

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
    template <class Value>
    void Set(CURLoption option, Value value);
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
    bool Runs() const { return mTransfer == Transfer::Runs; }
    bool IsSending() const { return Runs() && !mFileEnded && !mCutShort; }
    // In direct mode libcurl 7.88 leaves a message about the listening socket there, before anything has
    // failed.
    bool HasProblem() const { return mProblem[0] != '\0' && !mProblemIsOld; }
    // Whether a data connection is awaited at a port that the server has named.
    bool IsConnectingData() const
    {
        return (mVerb == "EPSV" && mAnswer == 229) || (mVerb == "PASV" && mAnswer == 227);
    }
    void AllowConnecting();
    SSL* ControlSession();
    bool HasSpoken();
    bool IsInterrupted() { return IsSending() && HasSpoken(); }
    void ReadLastWord();
    void Stop(int code, std::string_view text);
    void Moved() { mMovedAt = Clock::now(); }
    bool HasStalled();
    bool Drain();

    const UploadJob& mJob;
    LocalFile& mFile;
    UploadEvents& mEvents;
    CertificateCheck mCertificate;
    CurlHandle mCurl;
    CurlList mCommands;
    UploadResult mUnusable; // why this libcurl cannot be used
    char mProblem[CURL_ERROR_SIZE] = {};
    bool mProblemIsOld = false; // it was there before a command that came after it

    // Sockets, owned by libcurl: the control connection, known from the greeting on, and the latest two
    // that were made. Once there is a data connection, it is the latest.
    curl_socket_t mControl = CURL_SOCKET_BAD;
    curl_socket_t mLatest = CURL_SOCKET_BAD;
    curl_socket_t mBeforeLatest = CURL_SOCKET_BAD;
    bool mSecured = false;      // the control connection is encrypted
    bool mDataSecured = false;  // and so will the data connection be
    bool mToldReadable = false; // the owner knows that nothing is encrypted
    bool mLeaves = false;       // QUIT is sent
    std::string mVerb;          // of the latest command
    int mAnswer = 0;            // number of the answer to it, and its line
    std::string mAnswerLine;
    // Whether the server has said that the transfer begins, and how it ended.
    enum class Transfer
    {
        Ahead,
        Runs,
        IsOver
    } mTransfer = Transfer::Ahead;
    bool mFileEnded = false; // all bytes are with the server's system
    bool mCutShort = false;  // the server took no more: libcurl was told that the file is at its end
    bool mConfirmed = false; // the server has said that it has them
    UploadResult mStopped;   // why a callback ended the transfer
    std::int64_t mSent = 0;
    std::int64_t mArrived = 0; // bytes that the server's system has acknowledged
    Clock::time_point mStartedAt = Clock::now();
    Clock::time_point mMovedAt = mStartedAt;
};

UploadResult CurlUpload::Run()
{
    if (!InitialiseOnce())
        return {kIPWorksOtherFailure, "The transfer library cannot be started."};
    if (!Prepare())
        return {kIPWorksOtherFailure, "Out of memory."};
    if (mUnusable.code != kIPWorksOk)
        return mUnusable;

    mEvents.Status(kIPWorksConnecting, "Connecting to " + mJob.host + ":" + std::to_string(mJob.port));
    mStartedAt = mMovedAt = Clock::now();
    CURLcode code = CURLE_OK;
    CallWithoutBrokenPipes([&] { code = curl_easy_perform(mCurl.get()); });

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

template <class Value>
void CurlUpload::Set(CURLoption option, Value value)
{
    const CURLcode code = curl_easy_setopt(mCurl.get(), option, value);
    if (code != CURLE_OK && mUnusable.code == kIPWorksOk)
        mUnusable = {kIPWorksOtherFailure, "The transfer library cannot be used: " +
                                               std::string(curl_easy_option_by_id(option)->name) + ": " +
                                               curl_easy_strerror(code)};
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

    if (!HasOpenSsl())
        mUnusable = {kIPWorksOtherFailure, "The transfer library was built without OpenSSL."};
    Set(CURLOPT_URL, url.c_str());
    Set(CURLOPT_PROTOCOLS_STR, "ftp");
    Set(CURLOPT_PROXY, "");
    Set(CURLOPT_USERNAME, mJob.user.c_str());
    Set(CURLOPT_PASSWORD, mJob.password.c_str());
    Set(CURLOPT_QUOTE, mCommands.get());
    Set(CURLOPT_UPLOAD, 1L);
    if (!mJob.passive)
        Set(CURLOPT_FTPPORT, "-"); // the address that the control connection has

    // The certificate is judged by the owner, in our own check.
    Set(CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_TRY));
    Set(CURLOPT_FTPSSLAUTH, static_cast<long>(CURLFTPAUTH_TLS));
    Set(CURLOPT_SSL_VERIFYPEER, 0L);
    Set(CURLOPT_SSL_VERIFYHOST, 0L);
    Set(CURLOPT_SSL_CTX_FUNCTION, &CurlUpload::OnTls);
    Set(CURLOPT_SSL_CTX_DATA, this);

    const long stallSeconds = static_cast<long>(mJob.stallLimit.count());
    Set(CURLOPT_NOSIGNAL, 1L);
    AllowConnecting();
    Set(CURLOPT_SERVER_RESPONSE_TIMEOUT, stallSeconds);
    Set(CURLOPT_ACCEPTTIMEOUT_MS, stallSeconds * 1000L);
    Set(CURLOPT_TCP_KEEPALIVE, 1L);
    Set(CURLOPT_TCP_KEEPIDLE, kKeepAliveSeconds);
    Set(CURLOPT_TCP_KEEPINTVL, kKeepAliveSeconds);
    // Ends the connection within the call, so that its last commands are under the same rules as all others.
    Set(CURLOPT_FORBID_REUSE, 1L);

    Set(CURLOPT_ERRORBUFFER, mProblem);
    Set(CURLOPT_VERBOSE, 1L);
    Set(CURLOPT_DEBUGFUNCTION, &CurlUpload::OnDebug);
    Set(CURLOPT_DEBUGDATA, this);
    Set(CURLOPT_READFUNCTION, &CurlUpload::OnRead);
    Set(CURLOPT_READDATA, this);
    Set(CURLOPT_NOPROGRESS, 0L);
    Set(CURLOPT_XFERINFOFUNCTION, &CurlUpload::OnProgress);
    Set(CURLOPT_XFERINFODATA, this);
    Set(CURLOPT_SOCKOPTFUNCTION, &CurlUpload::OnSocket);
    Set(CURLOPT_SOCKOPTDATA, this);
    Set(CURLOPT_CLOSESOCKETFUNCTION, &CurlUpload::OnCloseSocket);
    Set(CURLOPT_CLOSESOCKETDATA, this);
    return true;
}

// The server's word decides, and after that whoever knows best what went wrong: we ourselves, the server, the
// library.
UploadResult CurlUpload::Judge(CURLcode code) const
{
    if (mConfirmed)
        return {};
    if (mStopped.code != kIPWorksOk)
        return mStopped;
    if (mCertificate.Refused())
        return {kIPWorksSecurityFailed, "The server's certificate was not approved."};
    if (mAnswer >= 400)
        return {mAnswer, mAnswerLine};

    if (mAnswer == 226 || mAnswer == 250)
        return {kIPWorksConnectionLost,
                "The server ended the transfer before the end of the file: " + mAnswerLine};
    if (code == CURLE_ABORTED_BY_CALLBACK)
        return {kIPWorksConnectionLost, "The server ended the connection before the end of the file."};

    // libcurl's words for it are about the whole call; and through IPv6 it knows no second way.
    if (IsConnectingData() && (code == CURLE_OPERATION_TIMEDOUT || code == CURLE_WEIRD_SERVER_REPLY))
        return {kIPWorksConnectFailed, "The data connection cannot be opened: the port that the server named "
                                       "refuses it or does not answer."};

    const std::string text = HasProblem() ? mProblem : curl_easy_strerror(code);
    constexpr int kTooLarge = 100; // CURLE_TOO_LARGE from 8.6.0 on, for an answer without an end
    if (code == kTooLarge)
        return {kIPWorksConnectionLost, text};
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
        return {kIPWorksConnectionLost, "The connection broke: " + text};
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
        mEvents.Status(kIPWorksSecured, "The connection is encrypted" + mCertificate.Finding());
    }
    mVerb = line.substr(0, 4);
    // A server that greets as one who is logged in is not even asked.
    if (mVerb != "AUTH" && !mSecured && !std::exchange(mToldReadable, true))
        mEvents.Status(kIPWorksReadable,
                       "The server offers no encryption: password and file can be read on their way");
    mProblemIsOld = mProblem[0] != '\0';
    mLeaves = mVerb == "QUIT";
    if (!mLeaves)
        mAnswer = 0;
    mEvents.Command(line);
}

void CurlUpload::Answer(std::string_view line)
{
    mEvents.Answer(line);
    const int number = AnswerNumber(line);
    // After QUIT, an answer that belongs to the transfer may still come.
    if (number == 0 || (mLeaves && (!Runs() || number == 221)))
        return;
    mAnswer = number;
    mAnswerLine = line;
    AllowConnecting();
    if (mControl == CURL_SOCKET_BAD)
    {
        mControl = mLatest; // attempts at other addresses are closed by now
        if (number == 220 || number == 230)
            mEvents.Status(kIPWorksConnected, "Connected to " + mJob.host);
    }
    if (number == 230 || number == 232)
        mEvents.Status(kIPWorksLoggedIn, "Logged in as " + mJob.user);
    else if (mVerb == "PROT")
    {
        mDataSecured = number / 100 == 2;
        if (!mDataSecured)
            mEvents.Status(kIPWorksReadable,
                           "The server encrypts the dialogue only: the file can be read on its way");
    }
    else if (number == 125 || number == 150)
    {
        mTransfer = Transfer::Runs;
        mEvents.Status(kIPWorksSending, "Sending " + mJob.remoteFile);
    }
    else if (Runs())
    {
        mTransfer = Transfer::IsOver;
        mConfirmed = mFileEnded && (number == 226 || number == 250);
        if (mConfirmed)
            mEvents.Status(kIPWorksConfirmed, "The server has received " + mJob.remoteFile);
    }
}

std::size_t CurlUpload::OnRead(char* buffer, std::size_t size, std::size_t count, void* self)
{
    CurlUpload& upload = *static_cast<CurlUpload*>(self);
    // What a server says to a connection that it has ended before the first byte, libcurl may have read
    // already.
    if (upload.IsInterrupted() || (upload.mSent == 0 && IsBroken(upload.mLatest, milliseconds(0))))
    {
        upload.mCutShort = true;
        return 0;
    }
    const std::int64_t bytes = upload.mFile.Read(buffer, static_cast<std::int64_t>(size * count));
    if (bytes < 0)
        upload.Stop(kIPWorksLocalFileFailed, "The local file cannot be read to its end.");
    else if (bytes == 0)
        upload.mFileEnded = upload.Drain();
    const bool goesOn = bytes > 0 || upload.mFileEnded;
    return goesOn ? static_cast<std::size_t>(bytes) : CURL_READFUNC_ABORT;
}

int CurlUpload::OnProgress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent)
{
    CurlUpload& upload = *static_cast<CurlUpload*>(self);
    upload.mSent = sent;
    upload.mEvents.Progress(sent, upload.mFile.Size());
    // A server that speaks while it is sent a file takes no more of it.
    return upload.IsInterrupted() || upload.HasStalled() ? 1 : 0;
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
    else if (upload.mDataSecured && LeavesDirectDataReadable())
        upload.Stop(kIPWorksSecurityFailed, "This libcurl cannot encrypt a data connection in direct mode.");
    return upload.mStopped.code == kIPWorksOk ? CURL_SOCKOPT_OK : CURL_SOCKOPT_ERROR;
}

int CurlUpload::OnCloseSocket(void* self, curl_socket_t socket)
{
    CurlUpload& upload = *static_cast<CurlUpload*>(self);
    if (socket == upload.mLatest)
    {
        if (socket != upload.mControl)
            upload.ReadLastWord();
        upload.mLatest = upload.mBeforeLatest;
    }
    return CloseSocket(socket);
}

// libcurl counts its time to connect from the start of the call, log-in and earlier connections included:
// each step begins it anew. It is longer than a stall may last, which has words of its own; but a data
// connection gets a third of that, so that behind a port which a firewall hides the next way is tried.
void CurlUpload::AllowConnecting()
{
    const milliseconds stall = mJob.stallLimit;
    // Two addresses of one name share the time that there is before the greeting.
    const milliseconds limit = IsConnectingData()            ? stall / 3
                               : mControl == CURL_SOCKET_BAD ? stall + milliseconds(1000)
                                                             : stall * 2;
    const milliseconds passed = std::chrono::ceil<milliseconds>(Clock::now() - mStartedAt);
    Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>((passed + limit).count()));
}

SSL* CurlUpload::ControlSession()
{
    curl_tlssessioninfo* info = nullptr;
    curl_easy_getinfo(mCurl.get(), CURLINFO_TLS_SSL_PTR, &info);
    return mSecured && info != nullptr ? static_cast<SSL*>(info->internals) : nullptr;
}

// Whether the server has said something, or ended the connection. Under TLS more than its words comes there:
// tickets for a next session, new keys.
bool CurlUpload::HasSpoken()
{
    if (!mSecured)
        return IsReadable(mControl, milliseconds(0));
    const OnItsSocket session(ControlSession(), mControl);
    char first = 0;
    return session.Get() != nullptr && ReceiveTls(session.Get(), SSL_peek, &first, 1) != 0;
}

// A server that breaks a transfer off says why, but libcurl does not listen any more once the data connection
// has failed. From 8.x on it fails also where a file is cut short, since libcurl sends its end.
void CurlUpload::ReadLastWord()
{
    const OnItsSocket session(ControlSession(), mControl);
    if (mSecured && session.Get() == nullptr)
        return;

    const Clock::time_point end = Clock::now() + kLastWordWait;
    std::string heard;
    while ((IsSending() || (Runs() && HasProblem())) && mStopped.code == kIPWorksOk &&
           heard.size() < kLongestLastWord)
    {
        const milliseconds left = std::chrono::ceil<milliseconds>(end - Clock::now());
        char piece[1024];
        const int length = session.Get() != nullptr ? ReceiveTls(session.Get(), SSL_read, piece, sizeof piece)
                                                    : Receive(mControl, piece, sizeof piece);
        if (length < 0 || left.count() <= 0 || (length == 0 && !IsReadable(mControl, left)))
            return;
        heard.append(piece, static_cast<std::size_t>(length));
        for (std::size_t at = heard.find('\n'); at != std::string::npos; at = heard.find('\n'))
        {
            Answer(heard.substr(0, at + 1));
            heard.erase(0, at + 1);
        }
    }
}

void CurlUpload::Stop(int code, std::string_view text)
{
    if (mStopped.code == kIPWorksOk)
        mStopped = {code, std::string(text)};
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
    // Nothing more is awaited then but a goodbye, or the very answer that we have read in libcurl's place.
    const bool isOver = mTransfer == Transfer::IsOver || (mLeaves && !Runs());
    if (Clock::now() - mMovedAt < (isOver ? std::min(mJob.stallLimit, kGoodbyeWait) : mJob.stallLimit))
        return false;
    if (!isOver && !mLeaves) // a confirmation may come late
        Stop(kIPWorksStalled, "No byte moved for " + std::to_string(mJob.stallLimit.count()) + " seconds.");
    return true;
}

// Waits until the server's system has everything, since libcurl's time for the last answer begins then.
// False when that cannot be: the connection stalls or breaks, or the server takes no more.
bool CurlUpload::Drain()
{
    while (UnacknowledgedBytes(mLatest) > 0)
        if (HasStalled() || HasSpoken() || IsBroken(mLatest, kDrainInterval))
            return false;
    return true;
}

} // namespace

UploadResult RunUpload(const UploadJob& job, LocalFile& file, UploadEvents& events)
{
    return CurlUpload(job, file, events).Run();
}
