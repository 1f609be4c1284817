// Exported functions: certificates and the store.
#include "standin/base/win_file.h"
#include "standin/certificates/cert_record.h"
#include "standin/certificates/der_objects.h"
#include "standin/exports/guard.h"
#include "standin/operations/requests.h"
#include "standin/operations/search.h"
#include "standin/operations/transfer.h"
#include "standin/sessions/trust.h"
#include "standin/windows/display.h"

using namespace standin;

namespace {

/// The bit of the verification mode under which validity is left to the caller.
constexpr uint32_t kVerifyCertNoTimeCheck = 4;

CertPtr certificateIn(const DataBlob_t* encoded) {
  FoundObjects found = objectsIn(viewOf(encoded));
  if (found.certificates.size() != 1) fail(kCertificateDamaged);
  return std::move(found.certificates.front());
}

}  // namespace

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

int32_t QUIVO_ParseCert(EngineSession session, const DataBlob_t* encoded, uint32_t info, CertificateRecord* result) {
  return inSession(session, [&](Session& s) {
    CertificateRecord& target = required(result);
    fillRecord(target, certificateIn(encoded).get(), info, s.buffers);
  });
}

int32_t QUIVO_VerifyCert(EngineSession session, const VerifyCertParamRecord* param, const DataBlob_t* encoded,
                         CertificateRecord* result) {
  return inSession(session, [&](Session& s) {
    CertificateRecord& target = required(result);
    target = {};
    const VerifyCertParamRecord& wanted = required(param);
    const CertPtr certificate = certificateIn(encoded);
    TrustOptions options;
    options.check_time = (wanted.mode & kVerifyCertNoTimeCheck) == 0;
    const int32_t verdict = TrustChecker(s).check(certificate.get(), options);
    if (verdict != kOk && verdict != kVerifiedWithRemarks) fail(verdict);
    fillRecord(target, certificate.get(), wanted.info, s.buffers);
  });
}

int32_t QUIVO_ShowCertificate(EngineSession session, const DataBlob_t* encoded) {
  return inSession(session, [&](Session&) { showCertificate(certificateIn(encoded).get()); });
}

int32_t QUIVO_ShowCrl(EngineSession session, const DataBlob_t* encoded) {
  return inSession(session, [&](Session&) {
    const FoundObjects found = objectsIn(viewOf(encoded));
    if (found.crls.size() != 1) fail(kCrlDamaged);
    showCrl(found.crls.front().get());
  });
}

int32_t QUIVO_AddCertificate(EngineSession session, const SignParamRecord* addition, const DataBlob_t* encoded) {
  return inSession(session, [&](Session& s) { addCertificate(s, required(addition), viewOf(encoded)); });
}

int32_t QUIVO_AddCRL(EngineSession session, const SignParamRecord* addition, const DataBlob_t* encoded) {
  return inSession(session, [&](Session& s) { addCrl(s, required(addition), viewOf(encoded)); });
}

int32_t QUIVO_ExportMem(EngineSession session, const SignParamRecord* param, DataBlob_t* out) {
  return inSession(session, [&](Session& s) {
    DataBlob_t& target = required(out);
    target = s.buffers.copyBytes(exportObjects(s, required(param)));
  });
}

int32_t QUIVO_ExportFile(EngineSession session, const SignParamRecord* param, const char* file) {
  return inSession(session, [&](Session& s) { writeWholeFile(file, exportObjects(s, required(param))); });
}

int32_t QUIVO_ImportMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* in) {
  return inSession(session, [&](Session& s) { importObjects(s, required(param), viewOf(in)); });
}

int32_t QUIVO_ImportFile(EngineSession session, const SignParamRecord* param, const char* file) {
  return inSession(session,
                   [&](Session& s) { importObjects(s, required(param), readWholeFile(file, kLargestObject)); });
}

int32_t QUIVO_CreateXmlRequest(EngineSession session, uint32_t flag, const CertificateRecord* certTemplate,
                               DataBlob_t* request) {
  return inSession(session, [&](Session& s) {
    DataBlob_t& target = required(request);
    target = s.buffers.copyBytes(makeXmlRequest(s, flag, required(certTemplate)));
  });
}
