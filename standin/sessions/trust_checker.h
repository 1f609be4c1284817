// Checks the chain of a certificate up to a self-signed certificate of the store, as RFC 5280 describes.
#pragma once

#include <ctime>
#include <span>

#include "standin/base/codes.h"
#include "standin/base/openssl_owners.h"
#include "standin/sessions/session.h"

namespace standin {

struct TrustOptions {
  bool checkTime = true;
  time_t at = 0;                                ///< the time at which the certificate has to be valid; 0 is now
  std::span<const PolicyRecord> policies = {};  ///< each has to be valid along the chain
  const EVP_MD* signedWith = nullptr;           ///< the digest of the signature in question; null without one
  time_t signedAt = 0;                          ///< its time, if it is stated
  const X509_CRL* onlyList = nullptr;           ///< the one list that is looked at; null for all
};

/// kOk, or a remark.
bool IsGood(int32_t code);

class TrustChecker {
 public:
  /// Builds chains of the certificates of the session, which and of the untrusted `helpers`, which must outlive this
  /// object.
  explicit TrustChecker(const Session& session, STACK_OF(X509) * helpers = nullptr);

  /// kOk, a remark, or the code of the failure; kVerifiedWithRemarks if a revocation list is out of date.
  int32_t check(X509* certificate, const TrustOptions& options) const;

 private:
  struct Surroundings;
  /// What may be needed to check the certificate.
  Surroundings surroundingsOf(X509* certificate) const;
  int32_t check(X509* certificate, const TrustOptions& options, const Surroundings& around) const;

  const Store& known_;
  STACK_OF(X509) * helpers_;
};

}  // namespace standin
