// SPDX-License-Identifier: MIT
#include "tests/support/TlsStream.h"

#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <csignal>

#include <poll.h>

namespace
{

constexpr long kSecondsPerDay = 86400;

class TlsStream : public Stream
{
public:
    TlsStream(std::unique_ptr<TcpStream> plain, SSL* ssl) : mPlain(std::move(plain)), mSsl(ssl, SSL_free) {}
    ~TlsStream() override
    {
        if (!mReset)
            SSL_shutdown(mSsl.get());
    }

    int Receive(char* buffer, int capacity) override
    {
        pollfd socket{static_cast<int>(mPlain->Socket()), POLLIN, 0};
        if (SSL_pending(mSsl.get()) == 0 && poll(&socket, 1, 20) != 1)
            return -1;
        const int got = SSL_read(mSsl.get(), buffer, capacity);
        return got > 0 ? got : 0;
    }

    bool Send(std::string_view bytes) override
    {
        return SSL_write(mSsl.get(), bytes.data(), static_cast<int>(bytes.size())) > 0;
    }

    void Reset() override
    {
        mReset = true;
        mPlain->Reset();
    }

private:
    std::unique_ptr<TcpStream> mPlain;
    std::unique_ptr<SSL, decltype(&SSL_free)> mSsl;
    bool mReset = false;
};

} // namespace

TlsServer::TlsServer(const std::string& host, int days)
    : mContext(SSL_CTX_new(TLS_server_method()), SSL_CTX_free)
{
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> owner(X509_new(), X509_free);
    X509* certificate = owner.get();
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -1000 * kSecondsPerDay);
    X509_gmtime_adj(X509_getm_notAfter(certificate), days * kSecondsPerDay);
    X509_set_pubkey(certificate, key.get());
    X509_NAME* name = X509_get_subject_name(certificate);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(host.c_str()), -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    X509_sign(certificate, key.get(), EVP_sha256());
    SSL_CTX_use_certificate(mContext.get(), certificate);
    SSL_CTX_use_PrivateKey(mContext.get(), key.get());
}

std::unique_ptr<Stream> TlsServer::Accept(std::unique_ptr<TcpStream> plain) const
{
    // The library writes without MSG_NOSIGNAL; this is a server's own thread.
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);

    SSL* ssl = SSL_new(mContext.get());
    SSL_set_fd(ssl, static_cast<int>(plain->Socket()));
    auto stream = std::make_unique<TlsStream>(std::move(plain), ssl);
    if (SSL_accept(ssl) == 1)
        return stream;
    stream->Reset();
    return nullptr;
}

std::string TlsServer::Certificate() const
{
    unsigned char* bytes = nullptr;
    const int length = i2d_X509(SSL_CTX_get0_certificate(mContext.get()), &bytes);
    std::string block(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
    OPENSSL_free(bytes);
    return block;
}

std::unique_ptr<Stream> NoHandshake(std::unique_ptr<TcpStream> plain)
{
    char hello[4096];
    while (plain->Receive(hello, sizeof hello) < 0)
    {
    }
    plain->Send("this is no handshake\r\n");
    return nullptr;
}
