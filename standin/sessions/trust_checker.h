// Whether a certificate can be trusted: its chain to a self-signed certificate of the store, validity, revocation.
#pragma once

#include <ctime>

#include "standin/base/codes.h"
#include "standin/base/openssl_owners.h"
#include "standin/sessions/session.h"

namespace standin {

struct TrustOptions {
  bool checkTime = true;
  time_t at = 0;  ///< when the certificate has to be valid; 0 is now
};

/// kOk, with or without remarks.
inline bool IsGood(int32_t code) { return code == kOk || code == kVerifiedWithRemarks; }

class TrustChecker {
 public:
  /// Looks at the session's store and at nothing else but `helpers`, which may help to build chains but are not
  /// trusted.
  explicit TrustChecker(const Session& session, const STACK_OF(X509) * helpers = nullptr);

  /// kOk; kVerifiedWithRemarks when only the revocation list is out of date; or what is wrong with the certificate.
  int32_t check(X509* certificate, const TrustOptions& options) const;

 private:
  TrustStorePtr store_;
  CertViewPtr helpers_;
};

}  // namespace standin
