// Makes one signature over content that arrives in pieces, and joins it to those that a message already has.
#pragma once

#include "standin/base/digest.h"
#include "standin/messages/signed_parts.h"
#include "standin/sessions/key_store.h"

namespace standin {

class SignatureMaker {
 public:
  /// Picks the own key; fails with kOwnCertificateNotFound. A null `param` is all zeros.
  SignatureMaker(const KeyStore& keys, const SignParamRecord* param);

  /// Whether the caller wants the signature without the content.
  bool isDetached() const { return detached_; }
  /// The message to whose signatures the new one is added.
  void addTo(SignedParts existing) { existing_ = std::move(existing); }

  void update(ByteView content) { digest_.update(content); }
  /// All signatures, without content. Fails with kSigningFailed, or with kContentMismatch when an existing signature is
  /// known to be over other content.
  SignedParts finish();
  /// As `finish` will give it, except for the new signature itself and perhaps a few bytes of its length.
  SignedParts estimate() const;

 private:
  SignedParts makeSignature(ByteView digest) const;
  void checkExisting(ByteView digest) const;

  CertPtr certificate_;
  KeyPtr key_;
  bool detached_;
  bool send_certificate_;
  SignedParts existing_;
  Digest digest_;
};

}  // namespace standin
