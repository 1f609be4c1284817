// A signed message without its content, in parts that can be removed, added and put together again. The bytes of a part
// never change.
#pragma once

#include <vector>

#include "standin/base/buffers.h"
#include "standin/base/openssl_owners.h"
#include "standin/messages/message_reader.h"

namespace standin {

struct SignedParts {
  std::vector<Bytes> digestAlgorithms;  ///< AlgorithmIdentifiers
  Bytes contentType;                    ///< the OID element
  std::vector<Bytes> certificates;
  std::vector<Bytes> crls;
  std::vector<Bytes> signers;  ///< SignerInfos, in the order of DER

  /// Of a message that was read to its end. Fails with kNotSigned, kMessageDamaged, or kTooLarge if the message has
  /// more signers or certificates than any honest one.
  static SignedParts of(const MessageReader& reader);
  /// Of a message without content made by libcrypto.
  static SignedParts of(CMS_ContentInfo* message);

  /// Adds the signers of `other` with their certificates and algorithms. Fails with kTooLarge if `of` could not read
  /// the result.
  void merge(const SignedParts& other);
  /// The bytes after the content.
  Bytes trailer() const;
  /// The bytes before a content of that length, in DER.
  Bytes header(uint64_t contentLength, size_t trailerLength) const;
  Bytes withoutContent() const;
  /// The message in memory of the session.
  DataBlob_t handOut(Buffers& buffers, std::optional<ByteView> content) const;

 private:
  void requireReadable() const;
};

/// The AlgorithmIdentifiers of the digests that the signers use.
std::vector<Bytes> DigestAlgorithmsOf(const MessageReader::Head& head);

/// Fails with kMessageDamaged.
CmsPtr MessageFromDer(ByteView der);

}  // namespace standin
