#include "standin/messages/content_cipher.h"

#include <algorithm>

#include "standin/base/codes.h"
#include "standin/base/gost.h"
#include "standin/base/oids.h"

namespace standin {
namespace {

using AttributesPtr = std::unique_ptr<STACK_OF(X509_ATTRIBUTE), FreeStack<X509_ATTRIBUTE_free>>;

enum Direction { kDecrypting, kEncrypting };

ObjectPtr MacAttribute() {
  ObjectPtr type = Decode<ObjectPtr>(d2i_ASN1_OBJECT, kOidContentMac);
  if (type == nullptr) Fail(kWinOutOfMemory);
  return type;
}

}  // namespace

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
  // To decrypt, the GOST algorithms set the length themselves, and lose it when the key is set.
  const int section = SectionLengthOf(EVP_CIPHER_CTX_get_nid(context_));
  if (section != 0 && EVP_CIPHER_CTX_ctrl(context_, EVP_CTRL_KEY_MESH, section, nullptr) != 1) Fail(failure);
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

bool ContentCipher::hasMac() const {
  return (EVP_CIPHER_get_flags(EVP_CIPHER_CTX_get0_cipher(context_)) & EVP_CIPH_FLAG_CIPHER_WITH_MAC) != 0;
}

Bytes ContentCipher::tag() const {
  if (hasMac()) {
    const AttributesPtr attributes(sk_X509_ATTRIBUTE_new_null());
    const bool known = attributes != nullptr &&
                       EVP_CIPHER_CTX_ctrl(context_, EVP_CTRL_PROCESS_UNPROTECTED, kEncrypting, attributes.get()) > 0;
    const auto* mac = static_cast<const ASN1_OCTET_STRING*>(
        known ? X509at_get0_data_by_OBJ(attributes.get(), MacAttribute().get(), -1, V_ASN1_OCTET_STRING) : nullptr);
    if (mac == nullptr) Fail(kEncryptionFailed);
    return Bytes(mac->data, mac->data + mac->length);
  }
  Bytes tag(static_cast<size_t>(std::max(EVP_CIPHER_CTX_get_tag_length(context_), 0)));
  if (!tag.empty() &&
      EVP_CIPHER_CTX_ctrl(context_, EVP_CTRL_AEAD_GET_TAG, static_cast<int>(tag.size()), tag.data()) != 1) {
    Fail(kEncryptionFailed);
  }
  return tag;
}

bool ContentCipher::expectTag(ByteView tag) {
  const int length = static_cast<int>(tag.size());
  if (!hasMac()) {
    return EVP_CIPHER_CTX_ctrl(context_, EVP_CTRL_AEAD_SET_TAG, length, const_cast<uint8_t*>(tag.data())) == 1;
  }
  STACK_OF(X509_ATTRIBUTE)* stack = nullptr;
  const bool made =
      X509at_add1_attr_by_OBJ(&stack, MacAttribute().get(), V_ASN1_OCTET_STRING, tag.data(), length) != nullptr;
  const AttributesPtr attributes(stack);
  return made && EVP_CIPHER_CTX_ctrl(context_, EVP_CTRL_PROCESS_UNPROTECTED, kDecrypting, stack) > 0;
}

uint64_t ContentCipher::ciphertextLength(uint64_t plainLength) const {
  const uint64_t block = static_cast<uint64_t>(EVP_CIPHER_CTX_get_block_size(context_));
  return block == 1 ? plainLength : (plainLength / block + 1) * block;
}

}  // namespace standin
