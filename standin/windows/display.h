// The display: whether there is one, and the windows of certificates and revocation lists.
#pragma once

#include "standin/base/openssl_owners.h"

namespace standin {

/// Fails with kNoDisplay if no window can be shown.
void RequireDisplay();

/// Shows the object until the user closes the window. Fails with kNoDisplay or a Windows error number.
void ShowCertificate(X509* certificate);
void ShowCrl(X509_CRL* crl);

}  // namespace standin
