// Verifies one signed message in pieces, and the data of a detached signature.
#pragma once

#include <optional>

#include "standin/certificates/cert_record.h"
#include "standin/messages/content_digests.h"
#include "standin/messages/signed_parts.h"
#include "standin/sessions/session.h"
#include "standin/sessions/trust_checker.h"

namespace standin {

struct SignerVerdict {
  int32_t code;
  time_t signingTime;   ///< 0 if the signature states none
  CertPtr certificate;  ///< null if it is not known
};

class Verifier {
 public:
  /// `onContent` receives the content before its signatures are verified.
  Verifier(const Session& session, MessageReader::OnContent onContent);

  void feedMessage(ByteView bytes) { reader_.feed(bytes); }
  bool headKnown() const { return reader_.headKnown(); }
  /// Whether the message has its content; valid once the head is known.
  bool hasContent() const { return reader_.head().hasContent; }
  /// The data of a detached signature.
  void feedData(ByteView bytes) { digests_->update(bytes); }

  /// Verifies all signatures. `param` must outlive this object. Fails with kMessageDamaged, kNotSigned or
  /// kNoSuchSignature; a failed signature is a verdict instead.
  void finish(const VerifyParamRecord& param);

  std::vector<SignerVerdict> takeVerdicts() { return std::move(verdicts_); }
  /// The verdicts in one code: kOk, kVerifiedWithRemarks, or the first failure. With kVerifyMinSigns, enough signers
  /// with good signatures turn failures of others into remarks.
  int32_t overall() const;

  /// Whether one signature was removed and others remain.
  bool leavesSignatures() const { return removes_one_; }
  /// After finish: the message without the removed signature.
  const SignedParts& remaining() const { return parts_; }

 private:
  void begin(const MessageReader::Head& head);
  /// Null if it is not known.
  CertPtr certificateOf(CMS_SignerInfo* signer, STACK_OF(X509) * attached) const;
  SignerVerdict judge(CMS_ContentInfo* message, CMS_SignerInfo* signer, const TrustChecker& trust);
  int32_t checkDemands(X509* certificate) const;
  void removeSignature();

  const Session& session_;
  const VerifyParamRecord* param_ = nullptr;
  MessageReader reader_;
  std::optional<ContentDigests> digests_;
  SignedParts parts_;
  std::vector<SignerVerdict> verdicts_;
  bool removes_one_ = false;
};

}  // namespace standin
