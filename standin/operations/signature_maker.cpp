#include "standin/operations/signature_maker.h"

#include "standin/base/codes.h"
#include "standin/base/oids.h"

namespace standin {
namespace {

ObjectPtr ObjectFromDer(ByteView der) {
  const unsigned char* cursor = der.data();
  ObjectPtr object(d2i_ASN1_OBJECT(nullptr, &cursor, static_cast<long>(der.size())));
  if (object == nullptr) Fail(kMessageDamaged);
  return object;
}

const ASN1_OCTET_STRING* StatedDigest(const CMS_SignerInfo* signer) {
  return static_cast<const ASN1_OCTET_STRING*>(
      CMS_signed_get0_data_by_OBJ(signer, OBJ_nid2obj(NID_pkcs9_messageDigest), -3, V_ASN1_OCTET_STRING));
}

bool UsesDefaultDigest(CMS_SignerInfo* signer) {
  X509_ALGOR* digest = nullptr;
  CMS_SignerInfo_get0_algs(signer, nullptr, nullptr, &digest, nullptr);
  const ASN1_OBJECT* object = nullptr;
  X509_ALGOR_get0(&object, nullptr, nullptr, digest);
  return OBJ_obj2nid(object) == EVP_MD_get_type(DefaultDigest());
}

}  // namespace

SignatureMaker::SignatureMaker(const KeyStore& keys, const SignParamRecord* param) : digest_(DefaultDigest()) {
  const uint32_t flags = param == nullptr ? 0 : param->flag;
  detached_ = (flags & kSignDetached) != 0;
  send_certificate_ = (flags & kSignSendSert) != 0;
  const OwnKey& own = keys.pick(param == nullptr ? nullptr : param->mycert, KeyPurpose::kSigning);
  certificate_ = Share(own.certificate.get());
  EVP_PKEY_up_ref(own.key.get());
  key_.reset(own.key.get());
  existing_.contentType.assign(kOidData.begin(), kOidData.end());
}

SignedParts SignatureMaker::finish() {
  const Bytes digest = digest_.finish();
  if (!existing_.signers.empty()) checkExisting(digest);
  SignedParts all = existing_;
  all.merge(makeSignature(digest));
  return all;
}

SignedParts SignatureMaker::estimate() const {
  SignedParts all = existing_;
  all.merge(makeSignature(Bytes(static_cast<size_t>(EVP_MD_get_size(DefaultDigest())))));
  return all;
}

/// Needs only the hash of the content.
SignedParts SignatureMaker::makeSignature(ByteView digest) const {
  constexpr unsigned kFlags = CMS_PARTIAL | CMS_BINARY | CMS_DETACHED | CMS_NOSMIMECAP;
  const CmsPtr message(CMS_sign(nullptr, nullptr, nullptr, nullptr, kFlags));
  if (message == nullptr) Fail(kWinOutOfMemory);
  const unsigned certificateFlag = send_certificate_ ? 0 : CMS_NOCERTS;
  CMS_SignerInfo* signer =
      CMS_add1_signer(message.get(), certificate_.get(), key_.get(), DefaultDigest(), kFlags | certificateFlag);
  if (signer == nullptr) Fail(kSigningFailed);
  const ObjectPtr contentType = ObjectFromDer(existing_.contentType);
  const bool made =
      CMS_set1_eContentType(message.get(), contentType.get()) == 1 &&
      CMS_signed_add1_attr_by_NID(signer, NID_pkcs9_contentType, V_ASN1_OBJECT, contentType.get(), -1) == 1 &&
      CMS_signed_add1_attr_by_NID(signer, NID_pkcs9_messageDigest, V_ASN1_OCTET_STRING, digest.data(),
                                  static_cast<int>(digest.size())) == 1 &&
      CMS_SignerInfo_sign(signer) == 1;
  if (!made) Fail(kSigningFailed);
  return SignedParts::of(message.get());
}

void SignatureMaker::checkExisting(ByteView digest) const {
  const CmsPtr message = MessageFromDer(existing_.withoutContent());
  STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(message.get());
  for (int i = 0; i < sk_CMS_SignerInfo_num(signers); ++i) {
    CMS_SignerInfo* signer = sk_CMS_SignerInfo_value(signers, i);
    const ASN1_OCTET_STRING* stated = StatedDigest(signer);
    if (stated == nullptr || !UsesDefaultDigest(signer)) continue;
    if (!Equal({stated->data, static_cast<size_t>(stated->length)}, digest)) Fail(kContentMismatch);
  }
}

}  // namespace standin
