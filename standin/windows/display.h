// Windows of this engine: whether there can be any, and what certificates and lists look like.
#pragma once

#include "standin/base/openssl_owners.h"

namespace standin {

/// Fails with kNoDisplay when nobody could see a window.
void RequireDisplay();

/// Shows the object in the platform's viewer until the user closes it. Fails with kNoDisplay or a Windows error number.
void ShowCertificate(X509* certificate);
void ShowCrl(X509_CRL* crl);

}  // namespace standin
