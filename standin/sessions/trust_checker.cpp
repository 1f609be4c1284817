#include "standin/sessions/trust_checker.h"

#include <algorithm>
#include <set>

#include "standin/base/ansi.h"
#include "standin/base/digest.h"
#include "standin/base/times.h"
#include "standin/certificates/cert_extensions.h"
#include "standin/certificates/crl_scope.h"

namespace standin {
namespace {

/// libcrypto's level of strength: RSA-2048, curves of 224 bits, SHA-224.
constexpr int kLeastLevel = 2;
constexpr int kLeastDigestSize = 28;

/// GOST R 34.11-94 is long enough, but collisions of it are easier to find than those of SHA-224.
bool IsWeak(const EVP_MD* digest) {
  return EVP_MD_get_size(digest) < kLeastDigestSize || EVP_MD_get_type(digest) == NID_id_GostR3411_94;
}

/// The codes of a chain, the most serious first.
constexpr int32_t kFailures[] = {kCertificateDamaged, kAlgorithmUnknown, kIssuerUnknown, kChainBroken,
                                 kCrlForged,          kRevoked,          kCrlUnusable,   kExpired,
                                 kNotYetValid,        kPolicyMissing};
constexpr int32_t kRemarks[] = {kRevocationUnclear, kVerifiedWithRemarks, kWeakAlgorithm, kKeyPeriodOver, kOk};
constexpr int32_t kListCodes[] = {kCrlForged, kCrlUnusable, kRevocationUnclear, kVerifiedWithRemarks};

bool IsKnownAlgorithm(int signature) {
  int digest = NID_undef;
  if (OBJ_find_sigid_algs(signature, &digest, nullptr) != 1) return false;
  // Where the name of the algorithm implies no digest, the parameters do.
  return digest == NID_undef || KnownDigest(digest) != nullptr;
}

X509_STORE_CTX* ParentOf(const X509_STORE_CTX* context) { return X509_STORE_CTX_get0_parent_ctx(context); }

X509_STORE_CTX_cert_crl_fn DefaultEntryCheck() {
  const TrustContextPtr context(X509_STORE_CTX_new());
  if (context == nullptr || X509_STORE_CTX_init(context.get(), nullptr, nullptr, nullptr) != 1) Fail(kWinOutOfMemory);
  return X509_STORE_CTX_get_cert_crl(context.get());
}

/// What the check of one chain finds. The static functions are called by libcrypto.
class Findings {
 public:
  Findings(const Store& store, const std::vector<X509_CRL*>& crls, const TrustOptions& options)
      : store_(store), crls_(crls), options_(options) {}

  void add(int32_t code) {
    if (std::ranges::find(kFailures, code) < worstFailure_) worstFailure_ = std::ranges::find(kFailures, code);
    if (std::ranges::find(kRemarks, code) < worstRemark_) worstRemark_ = std::ranges::find(kRemarks, code);
  }
  int32_t worst() const { return worstFailure_ != std::end(kFailures) ? *worstFailure_ : *worstRemark_; }

  bool hadChoice = false;  ///< whether there were several lists for a certificate
  static int noteError(int ok, X509_STORE_CTX* context) {
    if (ok == 0) of(context).note(context, of(context).codeOf(context));
    return 1;  // the verdict is chosen from all errors
  }
  /// libcrypto looks for lists of the certificate's issuer alone, which an indirect list is not.
  static STACK_OF(X509_CRL) * listsFor(const X509_STORE_CTX* context, const X509_NAME*) {
    X509* certificate = X509_STORE_CTX_get_current_cert(context);
    STACK_OF(X509_CRL)* found = sk_X509_CRL_new_null();
    Findings& findings = of(context);
    for (X509_CRL* crl : findings.crls_) {
      if (findings.options_.onlyList != nullptr && findings.options_.onlyList != crl) continue;
      const bool isFit = IsComplete(crl) && BearsOn(crl, certificate) && ConcernsKindOf(crl, certificate);
      if (isFit && sk_X509_CRL_push(found, crl) > 0) X509_CRL_up_ref(crl);
    }
    findings.hadChoice = findings.hadChoice || sk_X509_CRL_num(found) > 1;
    return found;
  }
  /// libcrypto applies a delta list only where an extension names its address; here it is in the folder.
  static int checkEntry(X509_STORE_CTX* context, X509_CRL* crl, X509* certificate) {
    Findings& findings = of(context);
    findings.lookedUp_ = certificate;
    if (X509_CRL* delta = findings.deltaOf(crl); delta != nullptr) {
      EVP_PKEY* key = X509_get0_pubkey(X509_STORE_CTX_get0_current_issuer(context));
      const bool isGenuine = key != nullptr && X509_CRL_verify(delta, key) == 1;
      if (!isGenuine) findings.note(context, kCrlForged);
      if (!findings.isCurrent(delta)) findings.note(context, kVerifiedWithRemarks);
      if (!Continues(delta, crl)) findings.note(context, kRevocationUnclear);
      if (isGenuine && findings.checkEntry_(context, delta, certificate) == 2) return 1;  // removed from the list
    }
    return findings.checkEntry_(context, crl, certificate);
  }

 private:
  /// The chain of a list's issuer has a context of its own, without application data.
  static Findings& of(const X509_STORE_CTX* context) {
    while (ParentOf(context) != nullptr) context = ParentOf(context);
    return *static_cast<Findings*>(X509_STORE_CTX_get_app_data(context));
  }
  /// A list for a root counts if it revokes the root; a failure in the chain of a list's issuer spoils the list.
  void note(const X509_STORE_CTX* context, int32_t code) {
    const bool isOfList = std::ranges::find(kListCodes, code) != std::end(kListCodes);
    if (isOfList && X509_self_signed(X509_STORE_CTX_get_current_cert(context), 0) == 1) return;
    add(ParentOf(context) != nullptr && !IsGood(code) ? +kCrlUnusable : code);
  }
  int32_t codeOf(X509_STORE_CTX* context) const {
    X509* certificate = X509_STORE_CTX_get_current_cert(context);
    X509_CRL* crl = X509_STORE_CTX_get0_current_crl(context);
    const bool isKnown = certificate == nullptr || IsKnownAlgorithm(X509_get_signature_nid(certificate));
    switch (X509_STORE_CTX_get_error(context)) {
      case X509_V_ERR_UNABLE_TO_GET_CRL:
        return codeWithoutList(context, certificate);
      // libcrypto looks for another list then, and reports if there is none.
      case X509_V_ERR_DIFFERENT_CRL_SCOPE:
        return kOk;
      case X509_V_ERR_CRL_HAS_EXPIRED:
      case X509_V_ERR_CRL_NOT_YET_VALID:
        return crl != nullptr && deltaOf(crl) != nullptr && isCurrent(deltaOf(crl)) ? +kOk : kVerifiedWithRemarks;
      case X509_V_ERR_CRL_SIGNATURE_FAILURE:
        return crl == nullptr || IsKnownAlgorithm(X509_CRL_get_signature_nid(crl)) ? kCrlForged : kCrlUnusable;
      case X509_V_ERR_CRL_PATH_VALIDATION_ERROR: {
        // The list may be about the very certificate whose key signed it: its chain is being checked already.
        const X509* issuer = X509_STORE_CTX_get0_current_issuer(context);
        const bool isSame = issuer != nullptr && X509_cmp(issuer, X509_STORE_CTX_get0_cert(context)) == 0;
        return ParentOf(context) != nullptr && isSame ? kOk : kCrlUnusable;
      }
      case X509_V_ERR_KEYUSAGE_NO_CRL_SIGN:
      case X509_V_ERR_UNHANDLED_CRITICAL_CRL_EXTENSION:
        return kCrlUnusable;
      case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
      case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
      case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
      case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
      case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
      case X509_V_ERR_CERT_UNTRUSTED:
        if ((X509_get_extension_flags(certificate) & EXFLAG_INVALID) != 0) return kCertificateDamaged;
        return isKnown ? kIssuerUnknown : kAlgorithmUnknown;
      case X509_V_ERR_UNABLE_TO_DECODE_ISSUER_PUBLIC_KEY:
        return kAlgorithmUnknown;
      case X509_V_ERR_CERT_SIGNATURE_FAILURE:
        return isKnown ? kChainBroken : kAlgorithmUnknown;
      case X509_V_ERR_CERT_REVOKED:
        return kRevoked;
      case X509_V_ERR_CERT_HAS_EXPIRED:
        return kExpired;
      case X509_V_ERR_CERT_NOT_YET_VALID:
        return kNotYetValid;
      case X509_V_ERR_EE_KEY_TOO_SMALL:
      case X509_V_ERR_CA_KEY_TOO_SMALL:
        return store_.hasPolicy("admit short-keys") ? kOk : kWeakAlgorithm;
      case X509_V_ERR_CA_MD_TOO_WEAK:
        return store_.hasPolicy("admit weak-digests") ? kOk : kWeakAlgorithm;
      default:
        return kChainBroken;
    }
  }
  /// Certificates of an issuer without a list are good; authorities above the signer need no list of their kind.
  int32_t codeWithoutList(const X509_STORE_CTX* context, X509* certificate) const {
    bool isOtherKind = false;
    for (const X509_CRL* crl : crls_) {
      if (!BearsOn(crl, certificate)) continue;
      if (ConcernsKindOf(crl, certificate)) return lookedUp_ == certificate ? kRevocationUnclear : kCrlUnusable;
      isOtherKind = true;
    }
    return isOtherKind && X509_STORE_CTX_get_error_depth(context) == 0 ? kRevocationUnclear : kOk;
  }
  X509_CRL* deltaOf(const X509_CRL* crl) const {
    X509_CRL* newest = nullptr;
    for (X509_CRL* candidate : crls_) {
      if (IsDeltaAfter(candidate, newest == nullptr ? crl : newest)) newest = candidate;
    }
    return newest;
  }
  bool isCurrent(const X509_CRL* crl) const {
    const ASN1_TIME* next = X509_CRL_get0_nextUpdate(crl);
    return !options_.checkTime || next == nullptr ||
           SecondsOf(next) >= (options_.at != 0 ? options_.at : CurrentTime());
  }

  const Store& store_;
  const std::vector<X509_CRL*>& crls_;
  const TrustOptions& options_;
  const X509* lookedUp_ = nullptr;  ///< the last certificate that was looked up in a list
  X509_STORE_CTX_cert_crl_fn checkEntry_ = DefaultEntryCheck();
  const int32_t* worstFailure_ = std::end(kFailures);
  const int32_t* worstRemark_ = std::end(kRemarks) - 1;
};

/// Whether the policy, or any policy, is valid along the chain.
bool HasPolicy(const X509_STORE_CTX* context, const std::string& wanted) {
  const STACK_OF(X509_POLICY_NODE)* nodes = X509_policy_tree_get0_policies(X509_STORE_CTX_get0_policy_tree(context));
  for (int i = 0; i < sk_X509_POLICY_NODE_num(nodes); ++i) {
    const ASN1_OBJECT* policy = X509_policy_node_get0_policy(sk_X509_POLICY_NODE_value(nodes, i));
    if (OBJ_obj2nid(policy) == NID_any_policy || ObjectText(policy, true) == wanted) return true;
  }
  return false;
}

}  // namespace

bool IsGood(int32_t code) { return std::ranges::find(kRemarks, code) != std::end(kRemarks); }

/// Of the store's certificates and lists, those whose names lead to the certificate's chain and to its lists.
struct TrustChecker::Surroundings {
  TrustStorePtr roots;
  CertViewPtr helpers;
  std::vector<X509_CRL*> crls;
};

TrustChecker::TrustChecker(const Session& session, STACK_OF(X509) * helpers)
    : known_(session.store), helpers_(helpers) {}

TrustChecker::Surroundings TrustChecker::surroundingsOf(X509* certificate) const {
  Surroundings around{TrustStorePtr(X509_STORE_new()), CertViewPtr(sk_X509_new_null()), {}};
  if (around.roots == nullptr || around.helpers == nullptr) Fail(kWinOutOfMemory);
  X509_STORE_set_verify_cb(around.roots.get(), Findings::noteError);
  X509_STORE_set_lookup_crls(around.roots.get(), Findings::listsFor);
  X509_STORE_set_cert_crl(around.roots.get(), Findings::checkEntry);
  const CertCatalog& known = known_.certificates();
  std::vector<const X509*> waiting = {certificate};
  for (int i = 0; i < sk_X509_num(helpers_); ++i) waiting.push_back(sk_X509_value(helpers_, i));
  std::set<Term> names;
  std::set<size_t> places;
  std::set<size_t> crlPlaces;
  const auto follow = [&](const X509_NAME* issuer) {
    const Term name = NameTerm(issuer);
    if (!names.insert(name).second) return;
    for (const size_t place : known.find(name)) {
      const X509* found = known.all()[place]->get();
      if (found != nullptr && places.insert(place).second) waiting.push_back(found);
    }
    for (const size_t place : known_.crls().find(name)) crlPlaces.insert(place);
  };
  while (!waiting.empty()) {
    const X509* next = waiting.back();
    waiting.pop_back();
    ForEachListIssuer(next, follow);
  }
  for (const size_t place : places) {
    const StoredCertificate& found = *known.all()[place];
    if (found.isRoot()) {
      X509_STORE_add_cert(around.roots.get(), found.get());
    } else {
      X509_add_cert(around.helpers.get(), found.get(), X509_ADD_FLAG_DEFAULT);
    }
  }
  X509_add_certs(around.helpers.get(), helpers_, X509_ADD_FLAG_DEFAULT);
  for (const size_t place : crlPlaces) {
    X509_CRL* crl = known_.crls().all()[place]->get();
    if (crl != nullptr) around.crls.push_back(crl);
  }
  return around;
}

int32_t TrustChecker::check(X509* certificate, const TrustOptions& options) const {
  return check(certificate, options, surroundingsOf(certificate));
}

int32_t TrustChecker::check(X509* certificate, const TrustOptions& options, const Surroundings& around) const {
  const TrustContextPtr context(X509_STORE_CTX_new());
  if (context == nullptr ||
      X509_STORE_CTX_init(context.get(), around.roots.get(), certificate, around.helpers.get()) != 1) {
    Fail(kWinOutOfMemory);
  }
  X509_VERIFY_PARAM* param = X509_STORE_CTX_get0_param(context.get());
  unsigned long flags = X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL | X509_V_FLAG_EXTENDED_CRL_SUPPORT;
  if (!options.checkTime) flags |= X509_V_FLAG_NO_CHECK_TIME;
  X509_VERIFY_PARAM_set_flags(param, flags | X509_V_FLAG_POLICY_CHECK);
  // Without an initial policy, libcrypto refuses every chain that requires one.
  X509_VERIFY_PARAM_add0_policy(param, OBJ_nid2obj(NID_any_policy));
  X509_VERIFY_PARAM_set_auth_level(param, kLeastLevel);
  if (options.at != 0) X509_VERIFY_PARAM_set_time(param, options.at);
  Findings findings(known_, around.crls, options);
  X509_STORE_CTX_set_app_data(context.get(), &findings);
  if (X509_verify_cert(context.get()) != 1) {
    // The errors are accepted: only what cannot be read ends the check early.
    findings.add(X509_get0_pubkey(certificate) == nullptr ? kAlgorithmUnknown : kCertificateDamaged);
  }
  for (const PolicyRecord& policy : options.policies) {
    if (!HasPolicy(context.get(), TextOrEmpty(policy.oid))) findings.add(kPolicyMissing);
  }
  // libcrypto is content with one list for all reasons, but another may revoke.
  for (const X509_CRL* crl : around.crls) {
    if (!findings.hadChoice || known_.newestLike(crl) != crl) continue;
    TrustOptions alone = options;
    alone.onlyList = crl;
    if (check(certificate, alone, around) == kRevoked) findings.add(kRevoked);
  }
  if (options.signedWith == nullptr) return findings.worst();
  if (IsWeak(options.signedWith) && !known_.hasPolicy("admit weak-digests")) findings.add(kWeakAlgorithm);
  const time_t signedAt = options.signedAt != 0 ? options.signedAt : CurrentTime();
  if (options.checkTime && !IsWithinKeyPeriod(certificate, signedAt)) findings.add(kKeyPeriodOver);
  return findings.worst();
}

}  // namespace standin
