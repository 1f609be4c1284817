// Finding certificates.
#include "standin/search.h"

#include "standin/cert_id.h"
#include "standin/codes.h"
#include "standin/times.h"

namespace standin {

std::vector<CertPtr> findCertificates(Session& session, const FindParamRecord& param) {
  if ((param.flag & kFindMy) == 0) fail(kNotSupported);
  std::vector<CertPtr> found;
  for (const OwnKey& own : session.keys.own()) {
    if (namesCertificate(param.mycert) && !matches(own.certificate.get(), *param.mycert)) continue;
    if (!isWithinValidity(own.certificate.get(), currentTime())) continue;
    found.push_back(share(own.certificate.get()));
  }
  return found;
}

}  // namespace standin
