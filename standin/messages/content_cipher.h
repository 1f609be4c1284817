// The cipher of an envelope's content, over data in pieces.
#pragma once

#include "standin/base/bytes.h"
#include "standin/base/growing_buffer.h"
#include "standin/base/openssl_owners.h"

namespace standin {

class ContentCipher {
 public:
  /// For a message whose content key is known to libcrypto: just made, or just decrypted.
  explicit ContentCipher(CMS_ContentInfo* message);

  /// Appends what the piece gives.
  void update(ByteView piece, GrowingBuffer& out);
  /// False when a ciphertext does not end as it must.
  bool finish(GrowingBuffer& out);
  /// The length of the ciphertext of that many bytes.
  uint64_t ciphertextLength(uint64_t plainLength) const;

 private:
  BioPtr chain_;
  EVP_CIPHER_CTX* context_ = nullptr;
};

}  // namespace standin
