// SPDX-License-Identifier: MIT
#include "libraries/ipworks/CertificateCheck.h"

#include "base/Owned.h"

#include <openssl/ssl.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

namespace
{

std::string NameText(const X509_NAME* name)
{
    const Owned<BIO, BIO_free> memory(BIO_new(BIO_s_mem()));
    if (!memory || X509_NAME_print_ex(memory.get(), name, 0, XN_FLAG_ONELINE & ~ASN1_STRFLGS_ESC_MSB) < 0)
        return {};
    char* text = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &text);
    return std::string(text, static_cast<std::size_t>(length));
}

std::string Encode(const X509* certificate)
{
    unsigned char* bytes = nullptr;
    const int length = i2d_X509(certificate, &bytes);
    if (length <= 0)
        return {};
    std::string block(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
    OPENSSL_free(bytes);
    return block;
}

bool IsFor(X509* certificate, const std::string& host)
{
    return X509_check_host(certificate, host.c_str(), host.size(), 0, nullptr) == 1 ||
           X509_check_ip_asc(certificate, host.c_str(), 0) == 1;
}

} // namespace

void CertificateCheck::Attach(void* sslContext)
{
    SSL_CTX* context = static_cast<SSL_CTX*>(sslContext);
    TrustSystemAuthorities(context);
    SSL_CTX_set_verify(context, SSL_VERIFY_PEER, nullptr);
    SSL_CTX_set_cert_verify_callback(context, &CertificateCheck::Verify, this);
}

int CertificateCheck::Verify(X509_STORE_CTX* chain, void* self)
{
    if (!static_cast<CertificateCheck*>(self)->Decide(chain))
        return 0;
    X509_STORE_CTX_set_error(chain, X509_V_OK);
    return 1;
}

bool CertificateCheck::Decide(X509_STORE_CTX* chain)
{
    X509* certificate = X509_STORE_CTX_get0_cert(chain);
    const std::string block = Encode(certificate);
    if (!block.empty() && block == mApproved)
        return true;

    std::string problem;
    if (X509_verify_cert(chain) != 1)
        problem = X509_verify_cert_error_string(X509_STORE_CTX_get_error(chain));
    if (!IsFor(certificate, mJob.host))
        problem += (problem.empty() ? "" : "; ") + std::string("it is not for ") + mJob.host;

    const std::string subject = NameText(X509_get_subject_name(certificate));
    const std::string issuer = NameText(X509_get_issuer_name(certificate));
    mFinding = problem.empty() ? "; the certificate proves the server: " + subject + ", issued by " + issuer
                               : "; the certificate does not prove the server (" + problem + "): " + subject;
    mRefused = !mEvents.Approve(block, subject, issuer, problem);
    if (!mRefused)
        mApproved = block;
    return !mRefused;
}
