// Verifies one signed message whose bytes, and whose separate data if it has no content, arrive in pieces.
#pragma once

#include "standin/certificates/cert_record.h"
#include "standin/messages/signed_parts.h"
#include "standin/sessions/session.h"
#include "standin/sessions/trust_checker.h"

namespace standin {

/// The verdict on one signature.
struct SignerVerdict {
  int32_t code;
  time_t signingTime;   ///< 0 when the signature does not state one
  CertPtr certificate;  ///< null when there is none
};

class Verifier {
 public:
  /// `onContent` receives the content that the message carries, before anything is known about its signatures.
  Verifier(const Session& session, MessageReader::OnContent onContent);

  void feedMessage(ByteView bytes) { reader_.feed(bytes); }
  bool headKnown() const { return reader_.headKnown(); }
  /// The message carries its content; valid once the head is known.
  bool hasContent() const { return reader_.head().hasContent; }
  /// The data of a message that does not carry it.
  void feedData(ByteView bytes) { hash(bytes); }

  /// Judges all signatures under `param`, which has to live as long as the results are asked for. Fails with
  /// kMessageDamaged, kNotSigned or kNoSuchSignature; what is wrong with a signature or a certificate is a verdict
  /// instead.
  void finish(const VerifyParamRecord& param);

  std::vector<SignerVerdict> takeVerdicts() { return std::move(verdicts_); }
  /// The verdicts in one code: kOk, kVerifiedWithRemarks, or the first failure. Where a least number of good signatures
  /// is asked for, they make up for bad ones, with remarks.
  int32_t overall() const;

  /// The caller wants signatures removed from the message, but not all of them.
  bool leavesSignatures() const { return removes_one_; }
  /// After finish: the message as it is to be given back.
  const SignedParts& remaining() const { return parts_; }

 private:
  void begin(const MessageReader::Head& head);
  void hash(ByteView bytes);
  SignerVerdict judge(CMS_ContentInfo* message, CMS_SignerInfo* signer, const TrustChecker& trust);
  bool isGenuine(CMS_ContentInfo* message, CMS_SignerInfo* signer);
  int32_t checkDemands(X509* certificate) const;
  void removeSignature();

  const Session& session_;
  const VerifyParamRecord* param_ = nullptr;
  MessageReader reader_;
  BioPtr digests_;
  SignedParts parts_;
  std::vector<SignerVerdict> verdicts_;
  bool removes_one_ = false;
};

}  // namespace standin
