#include "standin/operations/verifier.h"

#include <algorithm>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/certificates/cert_extensions.h"
#include "standin/messages/content_digests.h"
#include "standin/messages/signer_info.h"

namespace standin {
namespace {

constexpr uint32_t kSigningUses = kKeyUsageDigitalSignature | kKeyUsageNonRepudation;
constexpr char kAnyExtKeyUsage[] = "2.5.29.37.0";
/// TLS servers (with two older names), OCSP and time-stamping.
constexpr const char* kServices[] = {"1.3.6.1.5.5.7.3.1", "1.3.6.1.4.1.311.10.3.3", "2.16.840.1.113730.4.1",
                                     "1.3.6.1.5.5.7.3.9", "1.3.6.1.5.5.7.3.8"};

/// Signatures with one key, or in one name, are one signer's.
bool SameSigner(const SignerVerdict& left, const SignerVerdict& right) {
  const X509* one = left.certificate.get();
  const X509* other = right.certificate.get();
  const bool sameName = X509_NAME_cmp(X509_get_subject_name(one), X509_get_subject_name(other)) == 0 &&
                        X509_NAME_cmp(X509_get_issuer_name(one), X509_get_issuer_name(other)) == 0;
  return sameName || EVP_PKEY_eq(X509_get0_pubkey(one), X509_get0_pubkey(other)) == 1;
}

/// The signers of good signatures, whose certificates are known.
int32_t CountSigners(const std::vector<SignerVerdict>& verdicts) {
  int32_t count = 0;
  for (auto verdict = verdicts.begin(); verdict != verdicts.end(); ++verdict) {
    const auto isTheirs = [&](const SignerVerdict& before) {
      return IsGood(before.code) && SameSigner(before, *verdict);
    };
    if (IsGood(verdict->code) && std::none_of(verdicts.begin(), verdict, isTheirs)) ++count;
  }
  return count;
}

/// Whether a critical extension reserves the key for services.
bool IsReserved(const X509* certificate) {
  X509_EXTENSION* extension = X509_get_ext(certificate, X509_get_ext_by_NID(certificate, NID_ext_key_usage, -1));
  return X509_EXTENSION_get_critical(extension) == 1 &&
         std::ranges::all_of(ExtKeyUsageOf(certificate), [](const std::string& usage) {
           return std::ranges::find(kServices, usage) != std::end(kServices);
         });
}

bool HasExtension(const X509* certificate, const ExtensionRecord& wanted) {
  const ByteView data = ViewOf(&wanted.data);
  return std::ranges::any_of(ExtensionsOf(certificate), [&](const CertExtension& one) {
    return one.oid == TextOrEmpty(wanted.oid) && (data.empty() || Equal(data, one.value));
  });
}

}  // namespace

Verifier::Verifier(const Session& session, MessageReader::OnContent onContent)
    : session_(session),
      reader_([this](const MessageReader::Head& head) { begin(head); },
              [this, onContent = std::move(onContent)](ByteView piece) {
                digests_->update(piece);
                onContent(piece);
              }) {}

void Verifier::begin(const MessageReader::Head& head) {
  if (head.kind != MessageKind::kSigned) Fail(kNotSigned);
  digests_.emplace(DigestAlgorithmsOf(head));
}

void Verifier::finish(const VerifyParamRecord& param) {
  param_ = &param;
  reader_.finish();
  parts_ = SignedParts::of(reader_);
  if (parts_.signers.empty()) Fail(kNotSigned);
  const CmsPtr message = MessageFromDer(parts_.withoutContent());
  const bool useAttached = (param_->flag & kVerifyNoAttachedCert) == 0;
  const CertStackPtr attached(useAttached ? CMS_get1_certs(message.get()) : nullptr);
  const TrustChecker trust(session_, attached.get());
  STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(message.get());
  for (int i = 0; i < sk_CMS_SignerInfo_num(signers); ++i) {
    CMS_SignerInfo* signer = sk_CMS_SignerInfo_value(signers, i);
    CMS_SignerInfo_set1_signer_cert(signer, certificateOf(signer, attached.get()).get());
    verdicts_.push_back(judge(message.get(), signer, trust));
  }
  if ((param_->flag & kVerifyDelSign) != 0) removeSignature();
}

CertPtr Verifier::certificateOf(CMS_SignerInfo* signer, STACK_OF(X509) * attached) const {
  for (CertPtr& known : session_.knownCertificates(TermOfSigner(signer))) {
    if (NamesSigner(signer, known.get())) return std::move(known);
  }
  for (int i = 0; i < sk_X509_num(attached); ++i) {
    if (NamesSigner(signer, sk_X509_value(attached, i))) return Share(sk_X509_value(attached, i));
  }
  return nullptr;
}

SignerVerdict Verifier::judge(CMS_ContentInfo* message, CMS_SignerInfo* signer, const TrustChecker& trust) {
  SignerVerdict verdict{kOk, SigningTimeOf(signer), nullptr};
  X509* certificate = nullptr;
  X509_ALGOR* digest = nullptr;
  CMS_SignerInfo_get0_algs(signer, nullptr, &certificate, &digest, nullptr);
  if (certificate == nullptr) {
    verdict.code = kSignerUnknown;
    return verdict;
  }
  verdict.certificate = Share(certificate);
  verdict.code = VerifySignature(message, signer, *digests_);
  if (verdict.code == kOk) {
    TrustOptions options{.checkTime = (param_->flag & kVerifyNoTimeCheck) == 0};
    if ((param_->flag & kVerifyUserVTime) != 0) options.at = verdict.signingTime;
    if ((param_->flag & kVerifyPolicy) != 0) options.policies = ListOf(param_->policies, param_->policyCount);
    options.signedWith = DigestOf(digest);
    options.signedAt = verdict.signingTime;
    verdict.code = trust.check(certificate, options);
    const int32_t demand = IsGood(verdict.code) ? checkDemands(certificate) : kOk;
    if (demand != kOk) verdict.code = demand;
  }
  return verdict;
}

int32_t Verifier::checkDemands(X509* certificate) const {
  const uint32_t uses = KeyUsageOf(certificate);
  if (uses != 0 && (uses & kSigningUses) == 0) return kKeyUsageMissing;
  if ((param_->flag & kVerifyKeyUsage) != 0 && !AllowsKeyUsage(certificate, param_->keyUsage)) return kKeyUsageMissing;
  if (IsReserved(certificate)) return kExtKeyUsageMissing;
  if ((param_->flag & kVerifyExtKeyUsage) != 0) {
    const std::vector<std::string> stated = ExtKeyUsageOf(certificate);
    const auto states = [&](const std::string& use) { return std::ranges::find(stated, use) != stated.end(); };
    for (const char* use : ListOf(param_->extKeyUsage, param_->extKeyUsageCount)) {
      if (!states(TextOrEmpty(use)) && !states(kAnyExtKeyUsage)) return kExtKeyUsageMissing;
    }
  }
  for (const ExtensionRecord& extension : ListOf(param_->extensions, param_->extensionCount)) {
    if (!HasExtension(certificate, extension)) return kExtensionMissing;
  }
  return kOk;
}

int32_t Verifier::overall() const {
  const auto isGood = [](const SignerVerdict& verdict) { return IsGood(verdict.code); };
  const int32_t good = CountSigners(verdicts_);
  const bool enoughWillDo = (param_->flag & kVerifyMinSigns) != 0;
  if (enoughWillDo && good < param_->minsigns) return kTooFewSignatures;
  const auto bad = std::ranges::find_if_not(verdicts_, isGood);
  if (bad != verdicts_.end()) return enoughWillDo && good > 0 ? kVerifiedWithRemarks : bad->code;
  const auto remark = std::ranges::find_if(verdicts_, [](const SignerVerdict& verdict) { return verdict.code != kOk; });
  return remark == verdicts_.end() ? kOk : kVerifiedWithRemarks;
}

void Verifier::removeSignature() {
  const int32_t index = param_->nSignToDelete;
  if (index == kDeleteAllSigns) return;
  if (index < 0 || static_cast<size_t>(index) >= parts_.signers.size()) Fail(kNoSuchSignature);
  parts_.signers.erase(parts_.signers.begin() + index);
  removes_one_ = !parts_.signers.empty();
}

}  // namespace standin
