#include "standin/sessions/trust_checker.h"

#include <algorithm>

namespace standin {
namespace {

/// The codes of a chain, the most serious first.
constexpr int32_t kBySeverity[] = {
    kIssuerUnknown, kChainBroken, kCrlForged, kRevoked, kExpired, kNotYetValid, kVerifiedWithRemarks, kOk,
};

int32_t CodeOf(int verifyError) {
  switch (verifyError) {
    case X509_V_OK:
    // Without a list of the issuer, nothing is revoked.
    case X509_V_ERR_UNABLE_TO_GET_CRL:
    case X509_V_ERR_UNABLE_TO_GET_CRL_ISSUER:
      return kOk;
    case X509_V_ERR_CRL_HAS_EXPIRED:
    case X509_V_ERR_CRL_NOT_YET_VALID:
      return kVerifiedWithRemarks;
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_CERT_UNTRUSTED:
      return kIssuerUnknown;
    case X509_V_ERR_CERT_REVOKED:
      return kRevoked;
    case X509_V_ERR_CERT_HAS_EXPIRED:
      return kExpired;
    case X509_V_ERR_CERT_NOT_YET_VALID:
      return kNotYetValid;
    case X509_V_ERR_CRL_SIGNATURE_FAILURE:
      return kCrlForged;
    default:
      return kChainBroken;
  }
}

/// The most serious of the codes that were added.
class Findings {
 public:
  void add(int32_t code) { worst_ = std::min(worst_, std::ranges::find(kBySeverity, code)); }
  int32_t worst() const { return *worst_; }

 private:
  const int32_t* worst_ = std::end(kBySeverity) - 1;
};

/// Collects the error and continues: the verdict is chosen from all errors.
int NoteError(int ok, X509_STORE_CTX* context) {
  if (ok == 1) return 1;
  static_cast<Findings*>(X509_STORE_CTX_get_app_data(context))->add(CodeOf(X509_STORE_CTX_get_error(context)));
  return 1;
}

void Push(STACK_OF(X509) * stack, X509* certificate) {
  if (sk_X509_push(stack, certificate) == 0) Fail(kWinOutOfMemory);
}

}  // namespace

TrustChecker::TrustChecker(const Session& session, const STACK_OF(X509) * helpers)
    : store_(X509_STORE_new()), helpers_(sk_X509_new_null()) {
  if (store_ == nullptr || helpers_ == nullptr) Fail(kWinOutOfMemory);
  for (const CertPtr& certificate : session.store.certificates()) {
    if ((X509_get_extension_flags(certificate.get()) & EXFLAG_SS) != 0) {
      X509_STORE_add_cert(store_.get(), certificate.get());
    } else {
      Push(helpers_.get(), certificate.get());
    }
  }
  for (const CrlPtr& crl : session.store.crls()) X509_STORE_add_crl(store_.get(), crl.get());
  for (int i = 0; helpers != nullptr && i < sk_X509_num(helpers); ++i) Push(helpers_.get(), sk_X509_value(helpers, i));
}

int32_t TrustChecker::check(X509* certificate, const TrustOptions& options) const {
  const TrustContextPtr context(X509_STORE_CTX_new());
  if (context == nullptr || X509_STORE_CTX_init(context.get(), store_.get(), certificate, helpers_.get()) != 1) {
    Fail(kWinOutOfMemory);
  }
  X509_VERIFY_PARAM* param = X509_STORE_CTX_get0_param(context.get());
  unsigned long flags = X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL;
  if (!options.checkTime) flags |= X509_V_FLAG_NO_CHECK_TIME;
  X509_VERIFY_PARAM_set_flags(param, flags);
  if (options.at != 0) X509_VERIFY_PARAM_set_time(param, options.at);
  Findings findings;
  X509_STORE_CTX_set_app_data(context.get(), &findings);
  X509_STORE_CTX_set_verify_cb(context.get(), NoteError);
  if (X509_verify_cert(context.get()) < 0) return kChainBroken;
  return findings.worst();
}

}  // namespace standin
