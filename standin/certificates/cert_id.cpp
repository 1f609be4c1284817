// Matching of certificates with identifiers.
#include "standin/certificates/cert_id.h"

#include <cstring>

#include "standin/base/ansi.h"
#include "standin/base/bytes.h"
#include "standin/base/codes.h"
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

const EVP_MD* DigestOfLength(uint32_t length) {
  switch (length) {
    case 20:
      return EVP_sha1();
    case 32:
      return EVP_sha256();
    case 48:
      return EVP_sha384();
    case 64:
      return EVP_sha512();
    default:
      return nullptr;
  }
}

}  // namespace

bool NamesCertificate(const CertIdRecord* id) {
  if (id == nullptr || id->type == kIdNotChosen) return false;
  if (!IsComplete(*id)) Fail(kWinInvalidParameter);
  return true;
}

bool IsHashOf(const X509* certificate, const DataBlob_t& hash) {
  const EVP_MD* digest = DigestOfLength(hash.len);
  if (digest == nullptr) return false;
  unsigned char computed[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  return X509_digest(certificate, digest, computed, &length) == 1 && length == hash.len &&
         std::memcmp(computed, hash.data, length) == 0;
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

}  // namespace standin
