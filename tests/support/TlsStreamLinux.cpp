// SPDX-License-Identifier: MIT
#include "tests/support/TlsStream.h"

#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <csignal>

#include <poll.h>

namespace
{

constexpr long kSecondsPerDay = 86400;

struct Deleter
{
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
    void operator()(SSL* ssl) const { SSL_free(ssl); }
};
using Key = std::unique_ptr<EVP_PKEY, Deleter>;
using Certificate = std::unique_ptr<X509, Deleter>;

class TlsStream : public Stream
{
public:
    TlsStream(std::unique_ptr<TcpStream> plain, SSL* ssl) : mPlain(std::move(plain)), mSsl(ssl) {}
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
    std::unique_ptr<SSL, Deleter> mSsl;
    bool mReset = false;
};

} // namespace

struct TlsServer::Context
{
    std::unique_ptr<SSL_CTX, Deleter> tls;
    ::Certificate certificate;
};

TlsServer::TlsServer(const std::string& host, int days) : mContext(std::make_unique<Context>())
{
    const Key key(EVP_EC_gen("P-256"));
    ::Certificate certificate(X509_new());
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -1000 * kSecondsPerDay);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), days * kSecondsPerDay);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME* name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(host.c_str()), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_sign(certificate.get(), key.get(), EVP_sha256());

    mContext->tls.reset(SSL_CTX_new(TLS_server_method()));
    SSL_CTX_use_certificate(mContext->tls.get(), certificate.get());
    SSL_CTX_use_PrivateKey(mContext->tls.get(), key.get());
    mContext->certificate = std::move(certificate);
}

TlsServer::~TlsServer() = default;

std::unique_ptr<Stream> TlsServer::Accept(std::unique_ptr<TcpStream> plain) const
{
    // The library writes without MSG_NOSIGNAL; this is a server's own thread.
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);

    SSL* ssl = SSL_new(mContext->tls.get());
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
    const int length = i2d_X509(mContext->certificate.get(), &bytes);
    std::string block(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
    OPENSSL_free(bytes);
    return block;
}
