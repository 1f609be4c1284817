// Makes one signature over content in pieces and adds it to the signatures of a message.
#pragma once

#include "standin/base/digest.h"
#include "standin/messages/signed_parts.h"
#include "standin/sessions/key_store.h"

namespace standin {

class SignatureMaker {
 public:
  /// Fails with kOwnCertificateNotFound. A null `param` is all zeros.
  SignatureMaker(const KeyStore& keys, const SignParamRecord* param);

  /// Whether the signature goes without the content.
  bool isDetached() const { return detached_; }
  /// Sets the message that has the other signatures.
  void addTo(SignedParts existing) { existing_ = std::move(existing); }

  void update(ByteView content) { digest_.update(content); }
  /// All signatures, without content. Fails with kSigningFailed, or with kContentMismatch if an existing signature
  /// states the hash of other content.
  SignedParts finish();
  /// The result of `finish` with another signature, perhaps of another length.
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
