// The engine's functions of certificates, revocation lists, requests and the store.
#include "fake_engine/recorder.h"
#include "fake_engine/results.h"

using fake::Recorder;
using fake::Reply;

namespace {

int32_t AddEncoded(const char* function, void* session, const void* addition, const void* encoded) {
  return Recorder(function, session).record(addition, fake::kSignParam).blob(encoded).reply().result;
}

int32_t AnswerCertificate(const Reply& reply, void* result) {
  if (result == nullptr) {
    fake::Engine().violate("a null certificate record");
  } else if (reply.record) {
    fake::WriteRecord(result, *reply.record);
  } else if (reply.certificate && !reply.writesNothing) {
    fake::WriteCertificate(result, *reply.certificate);
  }
  return reply.result;
}

}  // namespace

extern "C" {

int32_t QUIVO_FindCert(void* session, const void* param, void* result) {
  Recorder call("QUIVO_FindCert", session);
  const Reply reply = call.record(param, fake::kFindParam).record(result, fake::kFindResult).reply();
  fake::WriteFindResult(result, reply);
  return reply.result;
}

int32_t QUIVO_FreeFindResult(void* session, void* result) {
  return fake::TakeBack("QUIVO_FreeFindResult", session, result, fake::kFindResult);
}

int32_t QUIVO_ParseCert(void* session, const void* encoded, uint32_t info, void* result) {
  Recorder call("QUIVO_ParseCert", session);
  return AnswerCertificate(call.blob(encoded).number(info).record(result, fake::kCertificate).reply(), result);
}

int32_t QUIVO_VerifyCert(void* session, const void* param, const void* encoded, void* result) {
  Recorder call("QUIVO_VerifyCert", session);
  call.record(param, fake::kVerifyCertParam).blob(encoded).record(result, fake::kCertificate);
  return AnswerCertificate(call.reply(), result);
}

int32_t QUIVO_FreeCert(void* session, void* certificate) {
  return fake::TakeBack("QUIVO_FreeCert", session, certificate, fake::kCertificate);
}

int32_t QUIVO_ShowCertificate(void* session, const void* encoded) {
  return Recorder("QUIVO_ShowCertificate", session).blob(encoded).reply().result;
}

int32_t QUIVO_ShowCrl(void* session, const void* encoded) {
  return Recorder("QUIVO_ShowCrl", session).blob(encoded).reply().result;
}

int32_t QUIVO_AddCertificate(void* session, const void* addition, const void* encoded) {
  return AddEncoded("QUIVO_AddCertificate", session, addition, encoded);
}

int32_t QUIVO_AddCRL(void* session, const void* addition, const void* encoded) {
  return AddEncoded("QUIVO_AddCRL", session, addition, encoded);
}

int32_t QUIVO_ExportMem(void* session, const void* param, void* out) {
  const Reply reply = Recorder("QUIVO_ExportMem", session).record(param, fake::kSignParam).blob(out).reply();
  fake::WriteBlob(out, reply);
  return reply.result;
}

int32_t QUIVO_ExportFile(void* session, const void* param, const char* file) {
  return Recorder("QUIVO_ExportFile", session).record(param, fake::kSignParam).text(file).reply().result;
}

int32_t QUIVO_ImportMem(void* session, const void* param, const void* in) {
  return Recorder("QUIVO_ImportMem", session).record(param, fake::kSignParam).blob(in).reply().result;
}

int32_t QUIVO_ImportFile(void* session, const void* param, const char* file) {
  return Recorder("QUIVO_ImportFile", session).record(param, fake::kSignParam).text(file).reply().result;
}

int32_t QUIVO_CreateXmlRequest(void* session, uint32_t flag, const void* certTemplate, void* request) {
  Recorder call("QUIVO_CreateXmlRequest", session);
  const Reply reply = call.number(flag).record(certTemplate, fake::kCertificate).blob(request).reply();
  fake::WriteBlob(request, reply);
  return reply.result;
}

}  // extern "C"
