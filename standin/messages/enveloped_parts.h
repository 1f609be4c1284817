// An enveloped message without its content, in parts.
#pragma once

#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"
#include "standin/messages/message_reader.h"

namespace standin {

struct EnvelopedParts {
  Bytes version;     ///< the element
  Bytes originator;  ///< the element; empty when there is none
  Bytes recipients;  ///< the SET
  Bytes contentType;
  Bytes contentCipher;

  static EnvelopedParts of(const MessageReader::Head& head);
  /// Of a message without content made by libcrypto.
  static EnvelopedParts of(CMS_ContentInfo* message);

  /// States whose message it is.
  void setSender(const X509* certificate);

  Bytes withoutContent() const;
  /// What precedes a ciphertext of that length, in DER; nothing follows it.
  Bytes header(uint64_t ciphertextLength) const;
  /// What precedes and what follows a ciphertext of any length, given as a row of octet strings, in BER.
  Bytes streamHeader() const;
  static Bytes streamTrailer();

 private:
  Bytes beforeContent() const;
};

}  // namespace standin
