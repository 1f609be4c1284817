// Makes one signature over content in pieces and adds it to the signatures of a message.
#pragma once

#include <optional>

#include "standin/base/digest.h"
#include "standin/messages/content_digests.h"
#include "standin/messages/signed_parts.h"
#include "standin/sessions/key_store.h"

namespace standin {

class SignatureMaker {
 public:
  /// Fails with kOwnCertificateNotFound, or kAlgorithmUnknown for a key that does not sign messages here. A null
  /// `param` is all zeros.
  SignatureMaker(const KeyStore& keys, const SignParamRecord* param);

  /// Whether the signature goes without the content.
  bool isDetached() const { return detached_; }
  /// Sets the message that has the other signatures.
  void addTo(SignedParts existing);

  void update(ByteView content);
  /// All signatures, without content. Fails with kSigningFailed, with kTooLarge if the message could not be read again,
  /// or with kContentMismatch if an existing signature states the hash of other content.
  SignedParts finish();
  /// The result of `finish` with another signature, perhaps of another length.
  SignedParts estimate() const;

 private:
  SignedParts withSignature(ByteView digest) const;
  void checkExisting() const;

  CertPtr certificate_;
  KeyPtr key_;
  bool detached_;
  bool send_certificate_;
  const EVP_MD* algorithm_;
  std::optional<Digest> digest_;
  SignedParts existing_;
  std::optional<ContentDigests> existing_digests_;
};

}  // namespace standin
