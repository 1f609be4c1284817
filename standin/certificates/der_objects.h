// Certificates, revocation lists and requests from bytes, DER or PEM, and back.
#pragma once

#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// Files of a store and of imports beyond this are not read.
constexpr uint64_t kLargestObject = 16 * 1024 * 1024;

/// Null when the bytes are not exactly one object of the kind.
CertPtr CertificateFromDer(ByteView der);
CrlPtr CrlFromDer(ByteView der);
RequestPtr RequestFromDer(ByteView der);

Bytes DerOf(const X509* certificate);
Bytes DerOf(const X509_CRL* crl);
Bytes DerOf(const X509_REQ* request);
Bytes DerOf(const CMS_ContentInfo* message);

/// What was found in a file's bytes.
struct FoundObjects {
  std::vector<CertPtr> certificates;
  std::vector<CrlPtr> crls;
  std::vector<RequestPtr> requests;

  bool empty() const { return certificates.empty() && crls.empty() && requests.empty(); }
};

/// One DER object, or the blocks of a PEM text.
FoundObjects ObjectsIn(ByteView bytes);
/// The same, or what a signed message without signers carries, which is how a set of certificates travels.
FoundObjects ObjectsInBundle(ByteView bytes);

}  // namespace standin
