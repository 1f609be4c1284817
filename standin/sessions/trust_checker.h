// Checks the chain of a certificate up to a self-signed certificate of the store: signatures, validity, revocation.
#pragma once

#include <ctime>

#include "standin/base/codes.h"
#include "standin/base/openssl_owners.h"
#include "standin/sessions/session.h"

namespace standin {

struct TrustOptions {
  bool checkTime = true;
  time_t at = 0;  ///< the time at which the certificate has to be valid; 0 is now
};

/// kOk, with or without remarks.
inline bool IsGood(int32_t code) { return code == kOk || code == kVerifiedWithRemarks; }

class TrustChecker {
 public:
  /// Builds chains of the session's certificates and of `helpers`, which are not trusted.
  explicit TrustChecker(const Session& session, const STACK_OF(X509) * helpers = nullptr);

  /// kOk, kVerifiedWithRemarks if only the revocation list is out of date, or the code of the failure.
  int32_t check(X509* certificate, const TrustOptions& options) const;

 private:
  TrustStorePtr store_;
  CertViewPtr helpers_;
};

}  // namespace standin
