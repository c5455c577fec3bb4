// SPDX-License-Identifier: MIT
// Judges a TLS server's certificate against the system's authorities and the host's name, and lets the
// component's owner decide.
#pragma once

#include "libraries/ipworks/Upload.h"

// Takes the system's own authorities, and no file that is named at build time, into a context's store.
void TrustSystemAuthorities(struct ssl_ctx_st* context);

class CertificateCheck
{
public:
    CertificateCheck(const UploadJob& job, UploadEvents& events) : mJob(job), mEvents(events) {}
    CertificateCheck(const CertificateCheck&) = delete;
    CertificateCheck& operator=(const CertificateCheck&) = delete;

    // Makes every handshake of an SSL_CTX ask here. The object must outlive the context.
    void Attach(void* sslContext);

    // Whether the owner said no.
    bool Refused() const { return mRefused; }

    // Whether the latest certificate proves who the server is, to be said after "The connection is
    // encrypted".
    const std::string& Finding() const { return mFinding; }

private:
    static int Verify(struct x509_store_ctx_st* chain, void* self);
    bool Decide(struct x509_store_ctx_st* chain);

    const UploadJob& mJob;
    UploadEvents& mEvents;
    std::string mApproved; // the data connection shows the same certificate again: it is asked about once
    bool mRefused = false;
    std::string mFinding;
};
