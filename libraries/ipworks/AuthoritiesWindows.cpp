// SPDX-License-Identifier: MIT
#include "libraries/ipworks/CertificateCheck.h"

#include <windows.h>

#include <wincrypt.h>

#include <openssl/ssl.h>

// The library's own default is a folder of the machine that built it, which anybody might make.
void TrustSystemAuthorities(SSL_CTX* context)
{
    const HCERTSTORE system = CertOpenSystemStoreW(0, L"ROOT");
    if (system == nullptr)
        return;
    PCCERT_CONTEXT entry = nullptr;
    while ((entry = CertEnumCertificatesInStore(system, entry)) != nullptr)
    {
        const unsigned char* bytes = entry->pbCertEncoded;
        X509* const certificate = d2i_X509(nullptr, &bytes, static_cast<long>(entry->cbCertEncoded));
        X509_STORE_add_cert(SSL_CTX_get_cert_store(context), certificate);
        X509_free(certificate);
    }
    CertCloseStore(system, 0);
}
