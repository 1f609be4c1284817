// Certificates, revocation lists and requests from bytes, DER or PEM, and back.
#pragma once

#include <vector>

#include "standin/bytes.h"
#include "standin/openssl_owners.h"

namespace standin {

/// Files of a store and of imports beyond this are not read.
constexpr uint64_t kLargestObject = 16 * 1024 * 1024;

/// Null when the bytes are not exactly one object of the kind.
CertPtr certificateFromDer(ByteView der);
CrlPtr crlFromDer(ByteView der);
RequestPtr requestFromDer(ByteView der);

Bytes derOf(const X509* certificate);
Bytes derOf(const X509_CRL* crl);
Bytes derOf(X509_REQ* request);

/// Everything of these kinds found in a file's bytes: one DER object, the blocks of a PEM text, or the certificates and
/// lists of a certificates-only PKCS#7 message.
struct FoundObjects {
  std::vector<CertPtr> certificates;
  std::vector<CrlPtr> crls;
  std::vector<RequestPtr> requests;

  bool empty() const { return certificates.empty() && crls.empty() && requests.empty(); }
};
FoundObjects objectsIn(ByteView bytes);

}  // namespace standin
