#include "standin/messages/signer_info.h"

#include <openssl/asn1err.h>
#include <openssl/err.h>
#include <openssl/rsaerr.h>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/digest.h"
#include "standin/base/gost.h"
#include "standin/base/oids.h"
#include "standin/base/times.h"
#include "standin/certificates/der_objects.h"
#include "standin/certificates/names.h"
#include "standin/messages/ber.h"

namespace standin {
namespace {

bool IsSigningKey(int type) {
  return type == EVP_PKEY_RSA || type == EVP_PKEY_RSA_PSS || type == EVP_PKEY_EC || type == EVP_PKEY_DSA ||
         IsGostKey(type);
}

/// The value of an attribute that occurs once and has one value of this type; otherwise null.
const void* SignedValue(const CMS_SignerInfo* signer, int nid, int type) {
  constexpr int kOnlyOne = -3;
  return CMS_signed_get0_data_by_OBJ(signer, OBJ_nid2obj(nid), kOnlyOne, type);
}

bool StatesContentTypeOf(CMS_ContentInfo* message, const CMS_SignerInfo* signer) {
  const auto* stated = static_cast<const ASN1_OBJECT*>(SignedValue(signer, NID_pkcs9_contentType, V_ASN1_OBJECT));
  return stated != nullptr && OBJ_cmp(stated, CMS_get0_eContentType(message)) == 0;
}

/// Whether the attribute `nid`, if there is one, names the certificate by its hash. libcrypto's own check would need
/// the whole chain.
bool AttributeNames(const CMS_SignerInfo* signer, int nid, const EVP_MD* digest, const X509* certificate) {
  if (CMS_signed_get_attr_by_NID(signer, nid, -1) < 0) return true;
  const auto* value = static_cast<const ASN1_STRING*>(SignedValue(signer, nid, V_ASN1_SEQUENCE));
  if (value == nullptr) return false;
  // The first of the listed certificates is the signer's.
  std::vector<ByteView> members = {{value->data, static_cast<size_t>(value->length)}};
  for (int depth = 0; depth < 3 && !members.empty(); ++depth) members = ber::ChildrenOf(members[0]);
  if (members.size() > 1 && members[0][0] == ber::kSequence) {
    digest = DigestOf(members[0]);
    members.erase(members.begin());
  }
  return digest != nullptr && !members.empty() && Equal(ber::ContentOf(members[0]), HashOf(DerOf(certificate), digest));
}

/// A certificate keeps a key that libcrypto cannot decode as bytes: the key is then null.
int32_t CheckKey(X509* certificate) {
  X509_ALGOR* algorithm = nullptr;
  X509_PUBKEY_get0_param(nullptr, nullptr, nullptr, &algorithm, X509_get_X509_PUBKEY(certificate));
  const ASN1_OBJECT* type = nullptr;
  int parameterType = V_ASN1_UNDEF;
  const void* parameter = nullptr;
  X509_ALGOR_get0(&type, &parameterType, &parameter, algorithm);
  if (!IsSigningKey(OBJ_obj2nid(type))) return kAlgorithmUnknown;
  const EVP_PKEY* key = X509_get0_pubkey(certificate);
  if (key != nullptr) return EVP_PKEY_missing_parameters(key) == 0 ? kOk : kCertificateDamaged;
  if (IsGostKey(OBJ_obj2nid(type))) return NamesUnknownCurve(algorithm) ? kAlgorithmUnknown : kCertificateDamaged;
  if (OBJ_obj2nid(type) != EVP_PKEY_EC || parameterType != V_ASN1_OBJECT) return kCertificateDamaged;
  const int curve = OBJ_obj2nid(static_cast<const ASN1_OBJECT*>(parameter));
  return Owned<EC_GROUP_free>(EC_GROUP_new_by_curve_name(curve)) == nullptr ? kAlgorithmUnknown : kCertificateDamaged;
}

/// The stated algorithm must belong to the signer's key; libcrypto looks at the key alone.
int32_t CheckAlgorithms(CMS_SignerInfo* signer) {
  EVP_PKEY* key = nullptr;
  X509_ALGOR* digestAlgorithm = nullptr;
  X509_ALGOR* signature = nullptr;
  CMS_SignerInfo_get0_algs(signer, &key, nullptr, &digestAlgorithm, &signature);
  const EVP_MD* digest = DigestOf(digestAlgorithm);
  const ASN1_OBJECT* object = nullptr;
  int parameters = V_ASN1_UNDEF;
  X509_ALGOR_get0(&object, &parameters, nullptr, signature);
  const int stated = OBJ_obj2nid(object);
  if (digest == nullptr || stated == NID_undef) return kAlgorithmUnknown;
  const int keyType = EVP_PKEY_get_base_id(key);
  if (stated == NID_rsassaPss) return keyType == EVP_PKEY_RSA || keyType == EVP_PKEY_RSA_PSS ? kOk : kBadSignature;
  if (parameters != V_ASN1_UNDEF && parameters != V_ASN1_NULL) return kBadSignature;
  if (IsGostKey(keyType) && digest != SignatureDigest(key)) return kBadSignature;
  if (IsSigningKey(stated)) return stated == keyType ? kOk : kBadSignature;
  int ofDigest = NID_undef;
  int ofKey = NID_undef;
  if (OBJ_find_sigid_algs(stated, &ofDigest, &ofKey) != 1 || !IsSigningKey(ofKey)) return kAlgorithmUnknown;
  const bool fits = ofKey == keyType && (ofDigest == NID_undef || ofDigest == EVP_MD_get_type(digest));
  return fits ? kOk : kBadSignature;
}

/// Why libcrypto refused: the parameters of RSASSA-PSS may name algorithms that it does not know.
int32_t CodeOfRefusal() {
  const unsigned long error = ERR_peek_error();
  const bool unknown = (ERR_GET_LIB(error) == ERR_LIB_RSA && ERR_GET_REASON(error) == RSA_R_INVALID_PSS_PARAMETERS) ||
                       (ERR_GET_LIB(error) == ERR_LIB_ASN1 && ERR_GET_REASON(error) == ASN1_R_UNKNOWN_DIGEST);
  return unknown ? kAlgorithmUnknown : kBadSignature;
}

}  // namespace

time_t SigningTimeOf(const CMS_SignerInfo* signer) {
  for (const int type : {V_ASN1_UTCTIME, V_ASN1_GENERALIZEDTIME}) {
    const void* time = SignedValue(signer, NID_pkcs9_signingTime, type);
    if (time != nullptr) return SecondsOf(static_cast<const ASN1_TIME*>(time));
  }
  return 0;
}

Term TermOfSigner(CMS_SignerInfo* signer) {
  ASN1_OCTET_STRING* keyId = nullptr;
  X509_NAME* issuer = nullptr;
  ASN1_INTEGER* serial = nullptr;
  CMS_SignerInfo_get0_signer_id(signer, &keyId, &issuer, &serial);
  if (keyId != nullptr) return KeyIdTerm(HexOf({keyId->data, static_cast<size_t>(keyId->length)}));
  return SerialTerm(SerialText(serial));
}

bool NamesSigner(CMS_SignerInfo* signer, X509* certificate) {
  return CMS_SignerInfo_cert_cmp(signer, certificate) == 0 &&
         AttributeNames(signer, NID_id_smime_aa_signingCertificate, EVP_sha1(), certificate) &&
         AttributeNames(signer, NID_id_smime_aa_signingCertificateV2, EVP_sha256(), certificate);
}

int32_t VerifySignature(CMS_ContentInfo* message, CMS_SignerInfo* signer, const ContentDigests& content) {
  X509* certificate = nullptr;
  CMS_SignerInfo_get0_algs(signer, nullptr, &certificate, nullptr, nullptr);
  int32_t code = CheckKey(certificate);
  if (code == kOk) code = CheckAlgorithms(signer);
  if (code != kOk) return code;
  ERR_clear_error();
  if (CMS_signed_get_attr_count(signer) >= 0) {
    if (!StatesContentTypeOf(message, signer)) return kBadSignature;
    if (CMS_SignerInfo_verify(signer) != 1) return CodeOfRefusal();
  } else if (OBJ_obj2nid(CMS_get0_eContentType(message)) != NID_pkcs7_data || content.couldBeAttributes()) {
    // Without attributes nothing binds the type of the content.
    return kBadSignature;
  }
  return CMS_SignerInfo_verify_content(signer, content.chain()) == 1 ? kOk : CodeOfRefusal();
}

}  // namespace standin
