// The cipher of an envelope's content, applied to data in pieces.
#pragma once

#include "standin/base/bytes.h"
#include "standin/base/growing_buffer.h"
#include "standin/base/openssl_owners.h"

namespace standin {

class ContentCipher {
 public:
  /// `message` must have its content key, just made or just decrypted. Fails with `failure` if libcrypto does not know
  /// the cipher, or cannot encrypt the key for a recipient.
  ContentCipher(CMS_ContentInfo* message, int32_t failure);

  /// Appends the output for the piece.
  void update(ByteView piece, GrowingBuffer& out);
  /// False if the padding or the tag of a ciphertext is wrong.
  bool finish(GrowingBuffer& out);
  /// The tag of an encrypted content; empty for a cipher that authenticates nothing.
  Bytes tag() const;
  /// Sets the tag of a ciphertext before its end; false if it cannot be one.
  bool expectTag(ByteView tag);
  uint64_t ciphertextLength(uint64_t plainLength) const;

 private:
  /// Whether the tag is in an attribute behind the content, as that of GOST ciphers is.
  bool hasMac() const;

  BioPtr chain_;
  EVP_CIPHER_CTX* context_ = nullptr;
};

}  // namespace standin
