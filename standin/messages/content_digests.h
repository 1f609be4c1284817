// The digests of a message's content, each computed once for all signatures that use it.
#pragma once

#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// Null if libcrypto cannot compute the digest. The length of an extendable one would depend on the signature's
/// algorithm.
const EVP_MD* DigestOf(const X509_ALGOR* algorithm);
/// The same of an encoded AlgorithmIdentifier. Fails with kMessageDamaged.
const EVP_MD* DigestOf(ByteView algorithm);

class ContentDigests {
 public:
  /// `algorithms` are AlgorithmIdentifiers; those that libcrypto cannot compute are left out.
  explicit ContentDigests(const std::vector<Bytes>& algorithms);

  void update(ByteView content);
  /// The form that libcrypto's functions for signatures take.
  BIO* chain() const { return chain_.get(); }
  /// Whether the content could be the signed attributes of another signature, which would then fit the content.
  bool couldBeAttributes() const;

 private:
  BioPtr chain_;
  Bytes start_;
  uint64_t length_ = 0;
};

}  // namespace standin
