// SPDX-License-Identifier: MIT
#include "platform/net/LdapChannel.h"

#include "platform/net/LdapText.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

// In Windows' numbers; the header of OpenLDAP's library has other ones.
constexpr std::uint32_t kServerDown = 0x51;
constexpr const char* kClosed = "the server closed the connection";

// OpenSSL's own socket BIO would raise SIGPIPE when the server has gone.
int SocketOf(BIO* bio)
{
    return static_cast<int>(reinterpret_cast<std::intptr_t>(BIO_get_data(bio)));
}

int ReadSocket(BIO* bio, char* bytes, int length)
{
    BIO_clear_retry_flags(bio);
    const ssize_t result = recv(SocketOf(bio), bytes, static_cast<std::size_t>(length), 0);
    if (result < 0 && (errno == EAGAIN || errno == EINTR))
        BIO_set_retry_read(bio);
    return static_cast<int>(result);
}

int WriteSocket(BIO* bio, const char* bytes, int length)
{
    BIO_clear_retry_flags(bio);
    const ssize_t result = send(SocketOf(bio), bytes, static_cast<std::size_t>(length), MSG_NOSIGNAL);
    if (result < 0 && (errno == EAGAIN || errno == EINTR))
        BIO_set_retry_write(bio);
    return static_cast<int>(result);
}

long ControlSocket(BIO*, int command, long, void*)
{
    return command == BIO_CTRL_FLUSH ? 1 : 0;
}

BIO* NewSocketBio(int socket)
{
    static BIO_METHOD* const method = []
    {
        BIO_METHOD* made = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "socket");
        BIO_meth_set_read(made, ReadSocket);
        BIO_meth_set_write(made, WriteSocket);
        BIO_meth_set_ctrl(made, ControlSocket);
        return made;
    }();
    BIO* bio = BIO_new(method);
    BIO_set_data(bio, reinterpret_cast<void*>(static_cast<std::intptr_t>(socket)));
    BIO_set_init(bio, 1);
    return bio;
}

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

void LdapChannel::SetKeepAlive(bool on)
{
    const int value = on ? 1 : 0;
    setsockopt(mSocket, SOL_SOCKET, SO_KEEPALIVE, &value, sizeof(value));
}

LdapFault LdapChannel::StartTls(const std::string& host, Deadline deadline)
{
    struct FreeContext
    {
        void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
    };
    ERR_clear_error();
    const std::unique_ptr<SSL_CTX, FreeContext> context(SSL_CTX_new(TLS_client_method()));
    if (!context || SSL_CTX_set_default_verify_paths(context.get()) != 1)
        return {kServerDown, "TLS cannot be set up on this machine"};
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
    mTls.reset(SSL_new(context.get()));
    BIO* bio = NewSocketBio(mSocket);
    SSL_set_bio(mTls.get(), bio, bio);
    // An address is looked for among the certificate's addresses, anything else among its names.
    X509_VERIFY_PARAM* wanted = SSL_get0_param(mTls.get());
    if (X509_VERIFY_PARAM_set1_ip_asc(wanted, host.c_str()) != 1)
    {
        X509_VERIFY_PARAM_set_hostflags(wanted, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
        if (X509_VERIFY_PARAM_set1_host(wanted, host.data(), host.size()) != 1)
            return {kServerDown, "the server name is none that a certificate can bear"};
        SSL_set_tlsext_host_name(mTls.get(), host.c_str());
    }
    while (true)
    {
        ERR_clear_error();
        errno = 0;
        const int result = SSL_connect(mTls.get());
        const int systemError = errno;
        if (result == 1)
            return {};
        const int error = SSL_get_error(mTls.get(), result);
        if (error != SSL_ERROR_WANT_READ && error != SSL_ERROR_WANT_WRITE)
            return {kServerDown, TlsText(mTls.get(), result, systemError)};
        if (!WaitForSocket(mSocket, error == SSL_ERROR_WANT_READ ? POLLIN : POLLOUT, deadline))
            return {kServerDown, "the TLS handshake was not answered in time"};
    }
}

LdapChannel& LdapChannel::Of(Sockbuf_IO_Desc* layer)
{
    return *static_cast<LdapChannel*>(layer->sbiod_pvt);
}

int LdapChannel::Setup(Sockbuf_IO_Desc* layer, void* channel)
{
    layer->sbiod_pvt = channel;
    return 0;
}

int LdapChannel::Control(Sockbuf_IO_Desc* layer, int option, void*)
{
    return option == LBER_SB_OPT_DATA_READY && Of(layer).mTls && SSL_pending(Of(layer).mTls.get()) > 0;
}

ber_slen_t LdapChannel::Read(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length)
{
    LdapChannel& channel = Of(layer);
    if (!channel.mTls)
        return channel.ReadPlain(bytes, length);
    ERR_clear_error();
    return channel.TlsResult(
        SSL_read(channel.mTls.get(), bytes, static_cast<int>(std::min<ber_len_t>(length, INT_MAX))));
}

ber_slen_t LdapChannel::Write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t length)
{
    LdapChannel& channel = Of(layer);
    if (!channel.mTls)
        return channel.WritePlain(bytes, length);
    ERR_clear_error();
    return channel.TlsResult(
        SSL_write(channel.mTls.get(), bytes, static_cast<int>(std::min<ber_len_t>(length, INT_MAX))));
}

ber_slen_t LdapChannel::ReadPlain(void* bytes, std::size_t length)
{
    const ssize_t result = recv(mSocket, bytes, length, 0);
    if (result == 0)
        mEnding = {kServerDown, kClosed};
    else if (result < 0 && errno != EAGAIN && errno != EINTR)
        mEnding = {kServerDown, SystemText(errno)};
    return result;
}

ber_slen_t LdapChannel::WritePlain(const void* bytes, std::size_t length)
{
    const ssize_t result = send(mSocket, bytes, length, MSG_NOSIGNAL);
    if (result < 0 && errno != EAGAIN && errno != EINTR)
        mEnding = {kServerDown, SystemText(errno)};
    return result;
}

ber_slen_t LdapChannel::TlsResult(int result)
{
    if (result > 0)
        return result;
    const int systemError = errno;
    const int error = SSL_get_error(mTls.get(), result);
    if (error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE)
    {
        errno = EAGAIN;
        return -1;
    }
    if (!mEnding)
        mEnding = {kServerDown, TlsText(mTls.get(), result, systemError)};
    errno = ECONNRESET;
    return error == SSL_ERROR_ZERO_RETURN ? 0 : -1;
}

void LdapChannel::Attach(Sockbuf* buffer)
{
    static Sockbuf_IO io = {Setup, nullptr, Control, Read, Write, nullptr};
    ber_sockbuf_add_io(buffer, &io, LBER_SBIOD_LEVEL_PROVIDER, this);
}
