// An enveloped message without its content, in parts.
#pragma once

#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"
#include "standin/messages/message_reader.h"

namespace standin {

struct EnvelopedParts {
  Bytes version;     ///< the element
  Bytes originator;  ///< the element; empty if there is none
  Bytes recipients;  ///< the SET
  Bytes contentType;
  Bytes contentCipher;

  static EnvelopedParts of(const MessageReader::Head& head);
  /// Of a message without content made by libcrypto.
  static EnvelopedParts of(CMS_ContentInfo* message);

  /// Names the sender.
  void setSender(const X509* certificate);

  Bytes withoutContent() const;
  /// The bytes before a ciphertext of that length, in DER. Nothing follows it.
  Bytes header(uint64_t ciphertextLength) const;
  /// The bytes before and after a ciphertext of unknown length, which is a series of octet strings, in BER.
  Bytes streamHeader() const;
  static Bytes streamTrailer();

 private:
  Bytes beforeContent() const;
};

}  // namespace standin
