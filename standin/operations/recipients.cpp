#include "standin/operations/recipients.h"

#include "standin/base/codes.h"
#include "standin/base/times.h"
#include "standin/certificates/cert_match.h"
#include "standin/certificates/cert_record.h"
#include "standin/sessions/trust_checker.h"

namespace standin {
namespace {

constexpr uint32_t kReceivingUses = kKeyUsageKeyEncipherment | kKeyUsageDataEncipherment | kKeyUsageKeyAgreement;

bool CanReceive(X509* certificate) {
  const uint32_t uses = KeyUsageOf(certificate);
  return uses == 0 || (uses & kReceivingUses) != 0;
}

CertPtr FindOne(const Session& session, const CertificateRecord& wanted, uint32_t flags) {
  CertPtr found;
  if ((flags & kEncryptIgnoreLocal) != 0 || !StatesAnything(wanted)) return found;
  const bool partial = (flags & kEncryptPartialSubject) != 0;
  for (const CertPtr& candidate : session.knownCertificates(TermOf(wanted))) {
    if (!Fits(candidate.get(), wanted, partial) || !CanReceive(candidate.get())) continue;
    if (found != nullptr) Fail(kRecipientAmbiguous);
    found = Share(candidate.get());
  }
  return found;
}

CertPtr Resolve(const Session& session, const CertificateRecord& wanted, uint32_t flags) {
  if (wanted.certEncoded.data != nullptr && wanted.certEncoded.len != 0) {
    CertPtr given = session.store.decoded(ViewOf(&wanted.certEncoded));
    if (given == nullptr) Fail(kCertificateDamaged);
    return given;
  }
  CertPtr found = FindOne(session, wanted, flags);
  if (found == nullptr) Fail(kRecipientNotFound);
  return found;
}

void Check(const TrustChecker& trust, X509* certificate, uint32_t flags) {
  if (!CanReceive(certificate)) Fail(kRecipientUnsuitable);
  const bool checkTime = (flags & kEncryptNoTimeCheck) == 0;
  if ((flags & kEncryptNoVerify) == 0) {
    const int32_t verdict = trust.check(certificate, {.checkTime = checkTime});
    if (!IsGood(verdict)) Fail(verdict);
  } else if (checkTime && !IsWithinValidity(certificate, CurrentTime())) {
    Fail(CurrentTime() < SecondsOf(X509_get0_notBefore(certificate)) ? kNotYetValid : kExpired);
  }
  if ((flags & kEncryptNoKeyTimeCheck) == 0 && !IsWithinKeyPeriod(certificate, CurrentTime())) Fail(kKeyPeriodOver);
}

}  // namespace

std::vector<CertPtr> ResolveRecipients(const Session& session, const EncryptParamRecord& param) {
  const std::span receivers = ListOf(param.receivers, param.receiverCount);
  if (receivers.empty()) Fail(kNoRecipients);
  const TrustChecker trust(session);
  std::vector<CertPtr> recipients;
  for (const CertificateRecord& receiver : receivers) {
    CertPtr recipient = Resolve(session, receiver, param.flag);
    Check(trust, recipient.get(), param.flag);
    recipients.push_back(std::move(recipient));
  }
  return recipients;
}

}  // namespace standin
