#include "standin/certificates/cert_id.h"

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/digest.h"
#include "standin/certificates/der_objects.h"
#include "standin/certificates/names.h"

namespace standin {
namespace {

bool IsComplete(const CertIdRecord& id) {
  switch (id.type) {
    case kIdIssuerAndSerial:
      return id.issuerAndSerial.issuer != nullptr && id.issuerAndSerial.serialNumber != nullptr;
    case kIdKeyId:
      return id.keyId != nullptr;
    case kIdCertHash:
      return id.certHash.data != nullptr && id.certHash.len != 0;
    default:
      return false;
  }
}

}  // namespace

bool NamesCertificate(const CertIdRecord* id) {
  if (id == nullptr || id->type == kIdNotChosen) return false;
  if (!IsComplete(*id)) Fail(kWinInvalidParameter);
  return true;
}

bool IsHashOf(const X509* certificate, const DataBlob_t& hash) {
  for (const EVP_MD* digest : {EVP_sha1(), EVP_sha256(), EVP_sha384(), EVP_sha512()}) {
    if (EVP_MD_get_size(digest) == static_cast<int>(hash.len))
      return Equal(HashOf(DerOf(certificate), digest), ViewOf(&hash));
  }
  return false;
}

bool Matches(const X509* certificate, const CertIdRecord& id) {
  switch (id.type) {
    case kIdIssuerAndSerial:
      return IsSameHex(id.issuerAndSerial.serialNumber, SerialText(certificate)) &&
             IsNameText(X509_get_issuer_name(certificate), Utf8FromAnsi(id.issuerAndSerial.issuer));
    case kIdKeyId:
      return IsSameHex(id.keyId, HexOf(KeyIdOf(certificate)));
    default:
      return IsHashOf(certificate, id.certHash);
  }
}

std::optional<Term> TermOfHash(const DataBlob_t& hash) {
  constexpr uint32_t kSha1 = 20;
  constexpr uint32_t kSha256 = 32;
  if (hash.len != kSha1 && hash.len != kSha256) return std::nullopt;
  return HashTerm(ViewOf(&hash));
}

std::optional<Term> TermOf(const CertIdRecord& id) {
  switch (id.type) {
    case kIdIssuerAndSerial:
      return SerialTerm(id.issuerAndSerial.serialNumber);
    case kIdKeyId:
      return KeyIdTerm(id.keyId);
    default:
      return TermOfHash(id.certHash);
  }
}

}  // namespace standin
