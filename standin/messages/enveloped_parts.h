// An enveloped message without its content, in parts.
#pragma once

#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"
#include "standin/messages/message_reader.h"

namespace standin {

/// What behind the content proves it.
enum class Proof {
  kNone,
  kTag,  ///< an octet string (AuthEnvelopedData)
  kMac,  ///< an unprotected attribute, which GOST ciphers demand
};

struct EnvelopedParts {
  Proof proof = Proof::kNone;
  Bytes version;     ///< the element
  Bytes originator;  ///< the element; empty if there is none
  Bytes recipients;  ///< the SET
  Bytes contentType;
  Bytes contentCipher;
  size_t tagLength = 0;  ///< as the cipher states it

  /// Fails with kNotEncrypted, kTooLarge for more recipients than any honest message has, or kAlgorithmUnknown if the
  /// parameters of the cipher are not its own.
  static EnvelopedParts of(const MessageReader::Head& head);
  /// Of a message without content made by libcrypto.
  static EnvelopedParts of(CMS_ContentInfo* message);

  /// The tag in the element behind the content. Fails with kMessageDamaged.
  ByteView tagIn(ByteView element) const;

  /// Names the sender.
  void setSender(const X509* certificate);

  /// For libcrypto, with a tag of zeros and a version that it accepts.
  Bytes withoutContent() const;
  /// The bytes before and after a ciphertext of that length, in DER.
  Bytes header(uint64_t ciphertextLength) const;
  Bytes trailer(ByteView tag) const;
  /// The bytes before and after a ciphertext of unknown length, which is a series of octet strings, in BER.
  Bytes streamHeader() const;
  Bytes streamTrailer(ByteView tag) const;

 private:
  void readTagLength();
  Bytes attributesWith(ByteView mac) const;
  Bytes finishHeader(ByteView messageVersion, ByteView encryptedInfo, uint64_t behind) const;
  ByteView kindOid() const;
};

}  // namespace standin
