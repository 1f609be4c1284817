#include "standin/operations/search.h"

#include "standin/base/times.h"
#include "standin/certificates/cert_id.h"
#include "standin/certificates/cert_match.h"
#include "standin/sessions/trust_checker.h"
#include "standin/windows/selection_dialog.h"

namespace standin {
namespace {

std::vector<CertPtr> CandidatesOf(const Session& session, const FindParamRecord& param, bool byId) {
  const bool onlyOwn = (param.flag & (kFindMy | kFindIgnoreLocal)) != 0;
  if (!onlyOwn) return session.knownCertificates(byId ? TermOf(*param.mycert) : TermOf(param.certTemplate));
  std::vector<CertPtr> candidates;
  for (const OwnKey& own : session.keys.own()) candidates.push_back(Share(own.certificate.get()));
  return candidates;
}

/// Whether the certificate can be used now. An own certificate can, even if its issuer is not known yet.
bool IsUsable(const TrustChecker& trust, X509* certificate, uint32_t flags) {
  if ((flags & kFindAll) != 0) return true;
  const time_t now = CurrentTime();
  const bool checkTime = (flags & kFindNoTimeCheck) == 0;
  if (checkTime && !IsWithinValidity(certificate, now)) return false;
  if ((flags & kFindNoKeyTimeCheck) == 0 && !IsWithinKeyPeriod(certificate, now)) return false;
  if ((flags & (kFindMy | kFindNoVerify)) != 0) return true;
  return IsGood(trust.check(certificate, {.checkTime = checkTime}));
}

}  // namespace

std::vector<CertPtr> FindCertificates(Session& session, const FindParamRecord& param) {
  const bool byId = NamesCertificate(param.mycert);
  const bool partialSubject = (param.flag & kFindPartialSubject) != 0;
  const TrustChecker trust(session);
  std::vector<CertPtr> found;
  for (CertPtr& candidate : CandidatesOf(session, param, byId)) {
    if (byId && !Matches(candidate.get(), *param.mycert)) continue;
    if (!Fits(candidate.get(), param.certTemplate, partialSubject)) continue;
    if (IsUsable(trust, candidate.get(), param.flag)) found.push_back(std::move(candidate));
  }
  if ((param.flag & kFindSelectUI) == 0) return found;
  return SelectCertificates(found);
}

}  // namespace standin
