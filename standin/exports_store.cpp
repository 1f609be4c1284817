// Exported functions: certificates and the store.
#include "standin/cert_record.h"
#include "standin/guard.h"
#include "standin/search.h"

using namespace standin;

int32_t QUIVO_FindCert(EngineSession session, const FindParamRecord* param, FindResultRecord* result) {
  return inSession(session, [&](Session& s) {
    FindResultRecord& target = required(result);
    const FindParamRecord& wanted = required(param);
    const std::vector<CertPtr> found = findCertificates(s, wanted);
    target = {};
    if (found.empty()) return;
    target.certificates = s.buffers.allocateArray<CertificateRecord>(found.size());
    for (const CertPtr& certificate : found) {
      fillRecord(target.certificates[target.count++], certificate.get(), wanted.info, s.buffers);
    }
  });
}

int32_t QUIVO_FreeFindResult(EngineSession session, FindResultRecord* result) {
  return inSession(session, [&](Session& s) {
    FindResultRecord& found = required(result);
    // A caller may have kept the records and given the array back already.
    if (s.buffers.owns(found.certificates)) {
      for (int32_t i = 0; i < found.count; ++i) freeRecord(found.certificates[i], s.buffers);
      s.buffers.release(found.certificates);
    }
    found = {};
  });
}

int32_t QUIVO_FreeCert(EngineSession session, CertificateRecord* certificate) {
  return inSession(session, [&](Session& s) { freeRecord(required(certificate), s.buffers); });
}
