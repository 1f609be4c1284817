#include "standin/operations/verifier.h"

#include <algorithm>

#include "standin/base/codes.h"
#include "standin/base/oids.h"
#include "standin/base/times.h"
#include "standin/certificates/cert_extensions.h"

namespace standin {
namespace {

/// Hostile messages may have any number of both.
constexpr size_t kMostSigners = 256;
constexpr size_t kMostCertificates = 512;

constexpr uint32_t kSigningUses = kKeyUsageDigitalSignature | kKeyUsageNonRepudation;
constexpr char kAnyExtKeyUsage[] = "2.5.29.37.0";
/// TLS servers (with two older names), OCSP and time-stamping.
constexpr const char* kServices[] = {"1.3.6.1.5.5.7.3.1", "1.3.6.1.4.1.311.10.3.3", "2.16.840.1.113730.4.1",
                                     "1.3.6.1.5.5.7.3.9", "1.3.6.1.5.5.7.3.8"};

const EVP_MD* DigestOf(const X509_ALGOR* algorithm) {
  const ASN1_OBJECT* object = nullptr;
  X509_ALGOR_get0(&object, nullptr, nullptr, algorithm);
  return EVP_get_digestbynid(OBJ_obj2nid(object));
}

const EVP_MD* DigestOf(CMS_SignerInfo* signer) {
  X509_ALGOR* algorithm = nullptr;
  CMS_SignerInfo_get0_algs(signer, nullptr, nullptr, &algorithm, nullptr);
  return DigestOf(algorithm);
}

/// The known digests of the message, each once.
std::vector<const EVP_MD*> DigestsOf(const MessageReader::Head& head) {
  std::vector<const EVP_MD*> digests;
  for (const Bytes& der : DigestAlgorithmsOf(head)) {
    const unsigned char* cursor = der.data();
    const AlgorithmPtr algorithm(d2i_X509_ALGOR(nullptr, &cursor, static_cast<long>(der.size())));
    if (algorithm == nullptr) Fail(kMessageDamaged);
    const EVP_MD* digest = DigestOf(algorithm.get());
    if (digest != nullptr && std::find(digests.begin(), digests.end(), digest) == digests.end()) {
      digests.push_back(digest);
    }
  }
  return digests;
}

time_t SigningTimeOf(const CMS_SignerInfo* signer) {
  const int at = CMS_signed_get_attr_by_NID(signer, NID_pkcs9_signingTime, -1);
  if (at < 0) return 0;
  const ASN1_TYPE* value = X509_ATTRIBUTE_get0_type(CMS_signed_get_attr(signer, at), 0);
  if (value == nullptr) return 0;
  const int type = ASN1_TYPE_get(value);
  const bool isTime = type == V_ASN1_UTCTIME || type == V_ASN1_GENERALIZEDTIME;
  return isTime ? SecondsOf(value->value.asn1_string) : 0;
}

/// The content type among the signed attributes must be that of the message.
bool StatesContentTypeOf(CMS_ContentInfo* message, const CMS_SignerInfo* signer) {
  const auto* stated = static_cast<const ASN1_OBJECT*>(
      CMS_signed_get0_data_by_OBJ(signer, OBJ_nid2obj(NID_pkcs9_contentType), -3, V_ASN1_OBJECT));
  return stated != nullptr && OBJ_cmp(stated, CMS_get0_eContentType(message)) == 0;
}

/// The stated algorithm must belong to the signer's key; libcrypto looks at the key alone.
bool NamesAlgorithmOf(CMS_SignerInfo* signer) {
  EVP_PKEY* key = nullptr;
  X509_ALGOR* digest = nullptr;
  X509_ALGOR* signature = nullptr;
  CMS_SignerInfo_get0_algs(signer, &key, nullptr, &digest, &signature);
  const ASN1_OBJECT* object = nullptr;
  int parameters = V_ASN1_UNDEF;
  X509_ALGOR_get0(&object, &parameters, nullptr, signature);
  const int stated = OBJ_obj2nid(object);
  const int keyType = EVP_PKEY_get_base_id(key);
  if (stated == NID_rsassaPss) return keyType == EVP_PKEY_RSA || keyType == EVP_PKEY_RSA_PSS;
  if (parameters != V_ASN1_UNDEF && parameters != V_ASN1_NULL) return false;
  if (stated == keyType) return true;
  int ofDigest = NID_undef;
  int ofKey = NID_undef;
  if (OBJ_find_sigid_algs(stated, &ofDigest, &ofKey) != 1 || ofKey != keyType) return false;
  return ofDigest == NID_undef || ofDigest == EVP_MD_get_type(DigestOf(digest));
}

/// The content of each part determines the version that it has to state.
bool HasPlausibleVersions(const SignedParts& parts) {
  int highest = Equal(parts.contentType, kOidData) ? 1 : 3;
  for (const Bytes& signer : parts.signers) {
    const std::vector<ByteView> members = ber::ChildrenOf(signer);
    if (members.size() < 2) return false;
    const uint8_t version = members[1][0] == ber::kContext0 ? 3 : 1;
    const uint8_t element[] = {ber::kInteger, 1, version};
    if (!Equal(members[0], element)) return false;
    highest = std::max<int>(highest, version);
  }
  return parts.version >= 1 && parts.version <= highest;
}

bool Contains(const std::vector<std::string>& list, const char* wanted, const char* any) {
  return std::any_of(list.begin(), list.end(),
                     [&](const std::string& one) { return one == any || (wanted != nullptr && one == wanted); });
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
  const std::vector<CertExtension> extensions = ExtensionsOf(certificate);
  return std::any_of(extensions.begin(), extensions.end(), [&](const CertExtension& one) {
    if (wanted.oid == nullptr || one.oid != wanted.oid) return false;
    const ByteView data = ViewOf(&wanted.data);
    return data.empty() || Equal(data, one.value);
  });
}

}  // namespace

Verifier::Verifier(const Session& session, MessageReader::OnContent onContent)
    : session_(session),
      reader_([this](const MessageReader::Head& head) { begin(head); },
              [this, onContent = std::move(onContent)](ByteView piece) {
                hash(piece);
                onContent(piece);
              }) {}

void Verifier::begin(const MessageReader::Head& head) {
  if (head.kind != MessageKind::kSigned) Fail(kNotSigned);
  digests_.reset(BIO_new(BIO_s_null()));
  for (const EVP_MD* algorithm : DigestsOf(head)) {
    BIO* digest = BIO_new(BIO_f_md());
    if (digest == nullptr) Fail(kWinOutOfMemory);
    digests_.reset(BIO_push(digest, digests_.release()));
    if (BIO_set_md(digest, algorithm) != 1) Fail(kInternal);
  }
}

void Verifier::hash(ByteView bytes) {
  constexpr size_t kLargestPiece = 1u << 30;
  while (!bytes.empty()) {
    const ByteView piece = bytes.first(std::min(bytes.size(), kLargestPiece));
    BIO_write(digests_.get(), piece.data(), static_cast<int>(piece.size()));
    bytes = bytes.subspan(piece.size());
  }
}

void Verifier::finish(const VerifyParamRecord& param) {
  param_ = &param;
  reader_.finish();
  parts_ = SignedParts::of(reader_);
  if (parts_.signers.empty()) Fail(kNotSigned);
  if (parts_.signers.size() > kMostSigners || parts_.certificates.size() > kMostCertificates) Fail(kTooLarge);
  const CmsPtr message = MessageFromDer(parts_.withoutContent());

  if (!HasPlausibleVersions(parts_)) Fail(kMessageDamaged);

  const bool useAttached = (param_->flag & kVerifyNoAttachedCert) == 0;
  const CertStackPtr attached(useAttached ? CMS_get1_certs(message.get()) : nullptr);
  const CertViewPtr known(sk_X509_new_null());
  for (const CertPtr& certificate : session_.store.certificates()) sk_X509_push(known.get(), certificate.get());
  for (const OwnKey& own : session_.keys.own()) sk_X509_push(known.get(), own.certificate.get());
  CMS_set1_signers_certs(message.get(), known.get(), useAttached ? 0 : CMS_NOINTERN);

  const TrustChecker trust(session_, attached.get());
  STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(message.get());
  for (int i = 0; i < sk_CMS_SignerInfo_num(signers); ++i) {
    verdicts_.push_back(judge(message.get(), sk_CMS_SignerInfo_value(signers, i), trust));
  }
  if ((param_->flag & kVerifyDelSign) != 0) removeSignature();
}

SignerVerdict Verifier::judge(CMS_ContentInfo* message, CMS_SignerInfo* signer, const TrustChecker& trust) {
  SignerVerdict verdict{kOk, SigningTimeOf(signer), nullptr};
  X509* certificate = nullptr;
  CMS_SignerInfo_get0_algs(signer, nullptr, &certificate, nullptr, nullptr);
  if (certificate == nullptr) {
    verdict.code = kSignerUnknown;
    return verdict;
  }
  verdict.certificate = Share(certificate);
  if (DigestOf(signer) == nullptr) {
    verdict.code = kAlgorithmUnknown;
  } else if (!isGenuine(message, signer)) {
    verdict.code = kBadSignature;
  } else {
    TrustOptions options{.checkTime = (param_->flag & kVerifyNoTimeCheck) == 0};
    if ((param_->flag & kVerifyUserVTime) != 0) options.at = verdict.signingTime;
    if ((param_->flag & kVerifyPolicy) != 0) options.policies = ListOf(param_->policies, param_->policyCount);
    options.signedWith = DigestOf(signer);
    options.signedAt = verdict.signingTime;
    verdict.code = trust.check(certificate, options);
    const int32_t demand = IsGood(verdict.code) ? checkDemands(certificate) : kOk;
    if (demand != kOk) verdict.code = demand;
  }
  return verdict;
}

bool Verifier::isGenuine(CMS_ContentInfo* message, CMS_SignerInfo* signer) {
  if (!NamesAlgorithmOf(signer)) return false;
  const bool hasAttributes = CMS_signed_get_attr_count(signer) >= 0;
  if (hasAttributes && (!StatesContentTypeOf(message, signer) || CMS_SignerInfo_verify(signer) != 1)) return false;
  return CMS_SignerInfo_verify_content(signer, digests_.get()) == 1;
}

int32_t Verifier::checkDemands(X509* certificate) const {
  const uint32_t uses = KeyUsageOf(certificate);
  if (uses != 0 && (uses & kSigningUses) == 0) return kKeyUsageMissing;
  if ((param_->flag & kVerifyKeyUsage) != 0 && !AllowsKeyUsage(certificate, param_->keyUsage)) return kKeyUsageMissing;
  if (IsReserved(certificate)) return kExtKeyUsageMissing;
  if ((param_->flag & kVerifyExtKeyUsage) != 0) {
    const std::vector<std::string> stated = ExtKeyUsageOf(certificate);
    for (const char* use : ListOf(param_->extKeyUsage, param_->extKeyUsageCount)) {
      if (!Contains(stated, use, kAnyExtKeyUsage)) return kExtKeyUsageMissing;
    }
  }
  for (const ExtensionRecord& extension : ListOf(param_->extensions, param_->extensionCount)) {
    if (!HasExtension(certificate, extension)) return kExtensionMissing;
  }
  return kOk;
}

int32_t Verifier::overall() const {
  const auto isGood = [](const SignerVerdict& verdict) { return IsGood(verdict.code); };
  const auto good = std::ranges::count_if(verdicts_, isGood);
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
