// Certificates, revocation lists and requests: decoded from DER or PEM, encoded to DER.
#pragma once

#include <functional>
#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// Larger files of a store or an import are not read.
constexpr uint64_t kLargestObject = 16 * 1024 * 1024;

/// Null unless the bytes are exactly one object of the kind.
CertPtr CertificateFromDer(ByteView der);
CrlPtr CrlFromDer(ByteView der);
RequestPtr RequestFromDer(ByteView der);

Bytes DerOf(const X509* certificate);
Bytes DerOf(const X509_CRL* crl);
Bytes DerOf(const X509_REQ* request);
Bytes DerOf(const CMS_ContentInfo* message);

struct FoundObjects {
  std::vector<CertPtr> certificates;
  std::vector<CrlPtr> crls;
  std::vector<RequestPtr> requests;

  bool empty() const { return certificates.empty() && crls.empty() && requests.empty(); }
};

/// Calls `take` with the bytes, if they may be DER; unless it returns true, with the blocks of a PEM text that are not
/// private keys.
void ForEachEncoding(ByteView bytes, const std::function<bool(ByteView)>& take);
/// One DER object, or the blocks of a PEM text.
FoundObjects ObjectsIn(ByteView bytes);
/// The same, or the objects in a signed message without signers, the usual form of a set of certificates.
FoundObjects ObjectsInBundle(ByteView bytes);

}  // namespace standin
