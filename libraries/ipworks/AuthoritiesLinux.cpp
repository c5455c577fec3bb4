// SPDX-License-Identifier: MIT
#include "libraries/ipworks/CertificateCheck.h"

#include <openssl/ssl.h>

void TrustSystemAuthorities(SSL_CTX* context)
{
    SSL_CTX_set_default_verify_paths(context);
}
