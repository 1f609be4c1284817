// The digests of a message's content, each computed once for all signatures that use it.
#pragma once

#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

class ContentDigests {
 public:
  /// `algorithms` are AlgorithmIdentifiers; those that libcrypto cannot compute are left out. Fails with
  /// kMessageDamaged.
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
