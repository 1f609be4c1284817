// Exported functions: certificates and the store.
#include "standin/base/files.h"
#include "standin/certificates/cert_record.h"
#include "standin/certificates/der_objects.h"
#include "standin/exports/guard.h"
#include "standin/operations/requests.h"
#include "standin/operations/search.h"
#include "standin/operations/transfer.h"
#include "standin/sessions/trust_checker.h"
#include "standin/windows/display.h"

using namespace standin;

namespace {

CertPtr CertificateIn(const DataBlob_t* encoded) {
  FoundObjects found = ObjectsIn(ViewOf(encoded));
  if (found.certificates.size() != 1) Fail(kCertificateDamaged);
  return std::move(found.certificates.front());
}

}  // namespace

int32_t QUIVO_FindCert(EngineSession session, const FindParamRecord* param, FindResultRecord* result) {
  return InSession(session, result, [&](Session& s) {
    const std::vector<CertPtr> found = FindCertificates(s, Required(param));
    FindResultRecord records{};
    if (found.empty()) return records;
    records.certificates = s.buffers.allocateArray<CertificateRecord>(found.size());
    for (const CertPtr& certificate : found) {
      records.certificates[records.count++] = RecordOf(certificate.get(), param->info, s.buffers);
    }
    return records;
  });
}

int32_t QUIVO_FreeFindResult(EngineSession session, FindResultRecord* result) {
  return InSession(session, [&](Session& s) { FreeRecord(Required(result), s.buffers); });
}

int32_t QUIVO_FreeCert(EngineSession session, CertificateRecord* certificate) {
  return InSession(session, [&](Session& s) { FreeRecord(Required(certificate), s.buffers); });
}

int32_t QUIVO_ParseCert(EngineSession session, const DataBlob_t* encoded, uint32_t info, CertificateRecord* result) {
  return InSession(session, result,
                   [&](Session& s) { return RecordOf(CertificateIn(encoded).get(), info, s.buffers); });
}

int32_t QUIVO_VerifyCert(EngineSession session, const VerifyCertParamRecord* param, const DataBlob_t* encoded,
                         CertificateRecord* result) {
  return InSession(session, [&](Session& s) {
    CertificateRecord& target = Required(result);
    target = {};
    const VerifyCertParamRecord& wanted = Required(param);
    const CertPtr certificate = CertificateIn(encoded);
    const bool checkTime = (wanted.mode & kVerifyCertNoTimeCheck) == 0;
    const int32_t verdict = TrustChecker(s).check(certificate.get(), {.checkTime = checkTime});
    if (!IsGood(verdict)) Fail(verdict);
    target = RecordOf(certificate.get(), wanted.info, s.buffers);
  });
}

int32_t QUIVO_ShowCertificate(EngineSession session, const DataBlob_t* encoded) {
  return InSession(session, [&](Session&) { ShowCertificate(CertificateIn(encoded).get()); });
}

int32_t QUIVO_ShowCrl(EngineSession session, const DataBlob_t* encoded) {
  return InSession(session, [&](Session&) {
    const FoundObjects found = ObjectsIn(ViewOf(encoded));
    if (found.crls.size() != 1) Fail(kCrlDamaged);
    ShowCrl(found.crls.front().get());
  });
}

int32_t QUIVO_AddCertificate(EngineSession session, const SignParamRecord* addition, const DataBlob_t* encoded) {
  return InSession(session, [&](Session& s) { AddCertificate(s, Required(addition), ViewOf(encoded)); });
}

int32_t QUIVO_AddCRL(EngineSession session, const SignParamRecord* addition, const DataBlob_t* encoded) {
  return InSession(session, [&](Session& s) { AddCrl(s, Required(addition), ViewOf(encoded)); });
}

int32_t QUIVO_ExportMem(EngineSession session, const SignParamRecord* param, DataBlob_t* out) {
  return InSession(session, out, [&](Session& s) { return s.buffers.copyBytes(ExportObjects(s, Required(param))); });
}

int32_t QUIVO_ExportFile(EngineSession session, const SignParamRecord* param, const char* file) {
  return InSession(session, [&](Session& s) { WriteWholeFile(file, ExportObjects(s, Required(param))); });
}

int32_t QUIVO_ImportMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* in) {
  return InSession(session, [&](Session& s) { ImportObjects(s, Required(param), ViewOf(in)); });
}

int32_t QUIVO_ImportFile(EngineSession session, const SignParamRecord* param, const char* file) {
  return InSession(session,
                   [&](Session& s) { ImportObjects(s, Required(param), ReadWholeFile(file, kLargestObject)); });
}

int32_t QUIVO_CreateXmlRequest(EngineSession session, uint32_t flag, const CertificateRecord* certTemplate,
                               DataBlob_t* request) {
  return InSession(session, request,
                   [&](Session& s) { return s.buffers.copyBytes(MakeXmlRequest(s, flag, Required(certTemplate))); });
}
