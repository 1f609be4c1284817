#include "standin/messages/content_cipher.h"

#include <algorithm>

#include "standin/base/codes.h"

namespace standin {

ContentCipher::ContentCipher(CMS_ContentInfo* message, int32_t failure) {
  BIO* sink = BIO_new(BIO_s_null());
  if (sink == nullptr) Fail(kWinOutOfMemory);
  BIO* chain = CMS_dataInit(message, sink);
  if (chain == nullptr) {
    BIO_free(sink);
    Fail(failure);
  }
  chain_.reset(chain);
  BIO* cipher = BIO_find_type(chain, BIO_TYPE_CIPHER);
  if (cipher == nullptr || BIO_get_cipher_ctx(cipher, &context_) != 1 || context_ == nullptr) Fail(failure);
}

void ContentCipher::update(ByteView piece, GrowingBuffer& out) {
  constexpr size_t kLargestPiece = 1u << 26;
  while (!piece.empty()) {
    const ByteView part = piece.first(std::min(piece.size(), kLargestPiece));
    const size_t room = part.size() + EVP_MAX_BLOCK_LENGTH;
    uint8_t* place = out.extend(room);
    int written = 0;
    if (EVP_CipherUpdate(context_, place, &written, part.data(), static_cast<int>(part.size())) != 1) {
      Fail(EVP_CIPHER_CTX_is_encrypting(context_) != 0 ? kEncryptionFailed : kDecryptionFailed);
    }
    out.shrink(room - static_cast<size_t>(written));
    piece = piece.subspan(part.size());
  }
}

bool ContentCipher::finish(GrowingBuffer& out) {
  uint8_t* place = out.extend(EVP_MAX_BLOCK_LENGTH);
  int written = 0;
  const bool whole = EVP_CipherFinal_ex(context_, place, &written) == 1;
  out.shrink(EVP_MAX_BLOCK_LENGTH - (whole ? static_cast<size_t>(written) : 0));
  return whole;
}

Bytes ContentCipher::tag() const {
  Bytes tag(static_cast<size_t>(std::max(EVP_CIPHER_CTX_get_tag_length(context_), 0)));
  if (!tag.empty() &&
      EVP_CIPHER_CTX_ctrl(context_, EVP_CTRL_AEAD_GET_TAG, static_cast<int>(tag.size()), tag.data()) != 1) {
    Fail(kEncryptionFailed);
  }
  return tag;
}

bool ContentCipher::expectTag(ByteView tag) {
  return EVP_CIPHER_CTX_ctrl(context_, EVP_CTRL_AEAD_SET_TAG, static_cast<int>(tag.size()),
                             const_cast<uint8_t*>(tag.data())) == 1;
}

uint64_t ContentCipher::ciphertextLength(uint64_t plainLength) const {
  const uint64_t block = static_cast<uint64_t>(EVP_CIPHER_CTX_get_block_size(context_));
  return block == 1 ? plainLength : (plainLength / block + 1) * block;
}

}  // namespace standin
