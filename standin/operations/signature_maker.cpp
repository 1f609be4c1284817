#include "standin/operations/signature_maker.h"

#include <openssl/core_names.h>
#include <openssl/rsa.h>

#include "standin/base/codes.h"
#include "standin/base/gost.h"
#include "standin/base/oids.h"

namespace standin {
namespace {

/// Signs with RSASSA-PSS, which libcrypto does of itself only for whole messages. The salt is as long as the digest,
/// unless the key demands a longer one.
bool PreparePss(CMS_SignerInfo* signer) {
  EVP_PKEY_CTX* context = CMS_SignerInfo_get0_pkey_ctx(signer);
  if (EVP_PKEY_CTX_set_rsa_pss_saltlen(context, RSA_PSS_SALTLEN_DIGEST) != 1) ERR_clear_error();
  X509_ALGOR* algorithm = nullptr;
  CMS_SignerInfo_get0_algs(signer, nullptr, nullptr, nullptr, &algorithm);
  uint8_t der[128];
  OSSL_PARAM parameters[] = {OSSL_PARAM_construct_octet_string(OSSL_SIGNATURE_PARAM_ALGORITHM_ID, der, sizeof der),
                             OSSL_PARAM_construct_end()};
  if (EVP_PKEY_CTX_get_params(context, parameters) != 1) return false;
  const unsigned char* cursor = der;
  return d2i_X509_ALGOR(&algorithm, &cursor, static_cast<long>(parameters[0].return_size)) != nullptr;
}

/// As the standard for messages with GOST algorithms has them.
void LeaveOutParameters(CMS_SignerInfo* signer) {
  X509_ALGOR* digest = nullptr;
  X509_ALGOR* signature = nullptr;
  CMS_SignerInfo_get0_algs(signer, nullptr, nullptr, &digest, &signature);
  for (X509_ALGOR* algorithm : {digest, signature}) {
    X509_ALGOR_set0(algorithm, OBJ_nid2obj(OBJ_obj2nid(algorithm->algorithm)), V_ASN1_UNDEF, nullptr);
  }
}

/// The AlgorithmIdentifier of the digest as the SignerInfo has it.
Bytes DigestAlgorithmOf(CMS_SignerInfo* signer) {
  X509_ALGOR* digest = nullptr;
  CMS_SignerInfo_get0_algs(signer, nullptr, nullptr, &digest, nullptr);
  unsigned char* raw = nullptr;
  const int length = i2d_X509_ALGOR(digest, &raw);
  const OctetsPtr owner(raw);
  if (length <= 0) Fail(kSigningFailed);
  return Bytes(raw, raw + length);
}

}  // namespace

SignatureMaker::SignatureMaker(const KeyStore& keys, const SignParamRecord* param) {
  const uint32_t flags = param == nullptr ? 0 : param->flag;
  detached_ = (flags & kSignDetached) != 0;
  send_certificate_ = (flags & kSignSendSert) != 0;
  const OwnKey& own = keys.pick(param == nullptr ? nullptr : param->mycert, KeyPurpose::kSigning);
  certificate_ = Share(own.certificate.get());
  EVP_PKEY_up_ref(own.key.get());
  key_.reset(own.key.get());
  const EVP_MD* fitting = SignatureDigest(own.key.get());
  if (fitting == nullptr) Fail(kAlgorithmUnknown);
  algorithm_ = fitting;
  digest_.emplace(fitting);
  existing_.contentType.assign(kOidData.begin(), kOidData.end());
}

void SignatureMaker::addTo(SignedParts existing) {
  existing_ = std::move(existing);
  existing_digests_.emplace(existing_.digestAlgorithms);
}

void SignatureMaker::update(ByteView content) {
  digest_->update(content);
  if (existing_digests_) existing_digests_->update(content);
}

SignedParts SignatureMaker::finish() {
  if (existing_digests_) checkExisting();
  return withSignature(digest_->finish());
}

SignedParts SignatureMaker::estimate() const {
  return withSignature(Bytes(static_cast<size_t>(EVP_MD_get_size(algorithm_))));
}

/// Needs only the hash of the content.
SignedParts SignatureMaker::withSignature(ByteView digest) const {
  constexpr unsigned kFlags = CMS_PARTIAL | CMS_BINARY | CMS_DETACHED | CMS_NOSMIMECAP;
  const CmsPtr message(CMS_sign(nullptr, nullptr, nullptr, nullptr, kFlags));
  if (message == nullptr) Fail(kWinOutOfMemory);
  const unsigned certificateFlag = send_certificate_ ? 0 : CMS_NOCERTS;
  const bool pss = EVP_PKEY_get_base_id(key_.get()) == EVP_PKEY_RSA_PSS;
  CMS_SignerInfo* signer = CMS_add1_signer(message.get(), certificate_.get(), key_.get(), algorithm_,
                                           kFlags | certificateFlag | (pss ? CMS_KEY_PARAM : 0));
  if (signer == nullptr || (pss && !PreparePss(signer))) Fail(kSigningFailed);
  if (IsGostKey(key_.get())) LeaveOutParameters(signer);
  const ObjectPtr contentType = Decode<ObjectPtr>(d2i_ASN1_OBJECT, existing_.contentType);
  if (contentType == nullptr) Fail(kMessageDamaged);
  const bool made =
      CMS_set1_eContentType(message.get(), contentType.get()) == 1 &&
      CMS_signed_add1_attr_by_NID(signer, NID_pkcs9_contentType, V_ASN1_OBJECT, contentType.get(), -1) == 1 &&
      CMS_signed_add1_attr_by_NID(signer, NID_pkcs9_messageDigest, V_ASN1_OCTET_STRING, digest.data(),
                                  static_cast<int>(digest.size())) == 1 &&
      CMS_SignerInfo_sign(signer) == 1;
  if (!made) Fail(kSigningFailed);
  SignedParts own = SignedParts::of(message.get());
  own.digestAlgorithms = {DigestAlgorithmOf(signer)};
  SignedParts all = existing_;
  all.merge(own);
  return all;
}

void SignatureMaker::checkExisting() const {
  const CmsPtr message = MessageFromDer(existing_.withoutContent());
  STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(message.get());
  for (int i = 0; i < sk_CMS_SignerInfo_num(signers); ++i) {
    CMS_SignerInfo* signer = sk_CMS_SignerInfo_value(signers, i);
    if (CMS_signed_get_attr_count(signer) < 0) continue;
    // 0 is another hash; a negative result is a hash that cannot be compared.
    if (CMS_SignerInfo_verify_content(signer, existing_digests_->chain()) == 0) Fail(kContentMismatch);
  }
}

}  // namespace standin
