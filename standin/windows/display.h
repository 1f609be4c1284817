// Windows of this engine: whether there can be any, and what certificates and lists look like.
#pragma once

#include "standin/base/openssl_owners.h"

namespace standin {

/// Fails with kNoDisplay when nobody could see a window.
void requireDisplay();

/// Shows the object in the platform's viewer until the user closes it. Fails with kNoDisplay or a Windows error number.
void showCertificate(X509* certificate);
void showCrl(X509_CRL* crl);

}  // namespace standin
