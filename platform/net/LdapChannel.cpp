// SPDX-License-Identifier: MIT
#include "platform/net/LdapChannel.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>

#include <openssl/err.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace platform
{

namespace
{

constexpr const char* kClosed = "the server closed the connection";

std::string SystemText(int error)
{
    return CauseText(std::generic_category().message(error));
}

std::string TlsText(SSL* tls, int result, int systemError)
{
    const long verification = SSL_get_verify_result(tls);
    if (verification != X509_V_OK)
        return X509_verify_cert_error_string(verification);
    const unsigned long error = ERR_peek_error();
    const int reason = ERR_GET_REASON(error);
    if (ERR_GET_LIB(error) == ERR_LIB_SSL &&
        (reason == SSL_R_WRONG_VERSION_NUMBER || reason == SSL_R_PACKET_LENGTH_TOO_LONG))
        return "the server does not speak TLS on this port";
    if (ERR_SYSTEM_ERROR(error))
        return SystemText(reason);
    if (error != 0 && reason != SSL_R_UNEXPECTED_EOF_WHILE_READING)
    {
        const char* text = ERR_reason_error_string(error);
        return std::string("TLS: ") + (text != nullptr ? text : "unknown error");
    }
    if (SSL_get_error(tls, result) == SSL_ERROR_SYSCALL && systemError != 0)
        return SystemText(systemError);
    return SSL_is_init_finished(tls) ? kClosed : kClosed + std::string(" during the TLS handshake");
}

} // namespace

LdapChannel::~LdapChannel()
{
    close(mSocket);
}

void LdapChannel::Attach(Sockbuf* buffer)
{
    LdapLayer::Attach(buffer, LBER_SBIOD_LEVEL_PROVIDER);
}

void LdapChannel::SetKeepAlive(bool on)
{
    const int value = on ? 1 : 0;
    setsockopt(mSocket, SOL_SOCKET, SO_KEEPALIVE, &value, sizeof(value));
}

void LdapChannel::WaitForMore() const
{
    WaitForSocket(mSocket, POLLIN, mDeadline);
}

LdapFault LdapChannel::StartTls(const std::string& host, Deadline deadline)
{
    ERR_clear_error();
    const Owned<SSL_CTX, SSL_CTX_free> context(SSL_CTX_new(TLS_client_method()));
    if (context == nullptr || SSL_CTX_set_default_verify_paths(context.get()) != 1)
        return {eLdapServerDown, "TLS cannot be set up on this machine"};
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
    SSL_CTX_clear_mode(context.get(), SSL_MODE_AUTO_RETRY); // one record at a time, for the deadline's sake
    mTls.reset(SSL_new(context.get()));
    if (mTls == nullptr || SSL_set_fd(mTls.get(), mSocket) != 1)
        return {eLdapServerDown, "TLS cannot be set up on this machine"};
    // An address is looked for among the certificate's addresses, anything else among its names.
    X509_VERIFY_PARAM* wanted = SSL_get0_param(mTls.get());
    if (X509_VERIFY_PARAM_set1_ip_asc(wanted, host.c_str()) != 1)
    {
        X509_VERIFY_PARAM_set_hostflags(wanted, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
        if (X509_VERIFY_PARAM_set1_host(wanted, host.data(), host.size()) != 1)
            return {eLdapServerDown, "no certificate can bear the server name"};
        SSL_set_tlsext_host_name(mTls.get(), host.c_str());
    }
    while (true)
    {
        ERR_clear_error();
        errno = 0;
        const int result = SSL_connect(mTls.get());
        if (result == 1)
            return {};
        const int systemError = errno;
        const short events = Awaited(result, 0);
        if (events == 0)
            return {eLdapServerDown, TlsText(mTls.get(), result, systemError)};
        if (!WaitForSocket(mSocket, events, deadline))
            return {eLdapServerDown, "the TLS handshake was not answered in time"};
    }
}

ber_slen_t LdapChannel::Read(char* bytes, std::size_t length)
{
    const auto count = static_cast<int>(std::min<std::size_t>(length, INT_MAX));
    ber_slen_t got = -1;
    bool waits = Clock::now() >= mDeadline;
    if (!waits)
    {
        ERR_clear_error();
        got = mTls != nullptr ? SSL_read(mTls.get(), bytes, count)
                              : recv(mSocket, bytes, static_cast<std::size_t>(count), 0);
        if (got > 0)
            return got;
        waits = Awaited(got, POLLIN) != 0;
        if (!waits)
            End(got);
    }
    errno = waits ? EAGAIN : ECONNRESET;
    return -1;
}

ber_slen_t LdapChannel::Write(const char* bytes, std::size_t length)
{
    const auto count = static_cast<int>(std::min<std::size_t>(length, INT_MAX));
    while (true)
    {
        ERR_clear_error();
        const ber_slen_t result = mTls != nullptr
                                      ? SSL_write(mTls.get(), bytes, count)
                                      : send(mSocket, bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL);
        if (result > 0)
            return result;
        const short events = Awaited(result, POLLOUT);
        if (events != 0 && WaitForSocket(mSocket, events, mDeadline))
            continue;
        if (events != 0)
            mEnding = {eLdapTimeout, "the server did not take the request in time"};
        else if (mTls != nullptr)
        {
            // Before it closed the server may have said why, in an alert that nobody has read.
            const int systemError = errno;
            ERR_clear_error();
            char unread = 0;
            const int said = SSL_read(mTls.get(), &unread, 1);
            errno = systemError;
            End(said > 0 ? result : said);
        }
        else
            End(result);
        errno = ECONNRESET;
        return -1;
    }
}

short LdapChannel::Awaited(ber_slen_t result, short withoutTls) const
{
    if (mTls == nullptr)
        return result < 0 && (errno == EAGAIN || errno == EINTR) ? withoutTls : 0;
    switch (SSL_get_error(mTls.get(), static_cast<int>(result)))
    {
    case SSL_ERROR_WANT_READ:
        return POLLIN;
    case SSL_ERROR_WANT_WRITE:
        return POLLOUT;
    default:
        return 0;
    }
}

void LdapChannel::End(ber_slen_t result)
{
    const int systemError = errno;
    if (mEnding)
        return;
    if (mTls != nullptr)
        mEnding = {eLdapServerDown, TlsText(mTls.get(), static_cast<int>(result), systemError)};
    else
        mEnding = {eLdapServerDown, result == 0 ? kClosed : SystemText(systemError)};
}

} // namespace platform
