// An engine with a defect: the stand-in behind it, all of whose functions are forwarded but these. TAVL_SEEDED_DEFECT
// names the defect; without one, this engine is the stand-in.
#include <windows.h>

#include <cstdlib>
#include <cstring>

#include "engine/functions.h"

namespace {

bool Has(const char* defect) {
  char named[40] = "";
  GetEnvironmentVariableA("TAVL_SEEDED_DEFECT", named, sizeof named);
  return std::strcmp(named, defect) == 0;
}

}  // namespace

extern "C" {

/// Leaves a member of a result unset.
int32_t SeededParseCert(EngineSession session, const DataBlob_t* encoded, uint32_t info, CertificateRecord* result) {
  const int32_t code = QUIVO_ParseCert(session, encoded, info, result);
  if (code == 0 && Has("unset-member")) result->notAfter = 0;
  return code;
}

/// Hands out memory of another allocator.
int32_t SeededSignMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* data,
                      const DataBlob_t* sign_in, DataBlob_t* sign_out) {
  const int32_t code = QUIVO_SignMem(session, param, data, sign_in, sign_out);
  if (code != 0 || !Has("foreign-allocator")) return code;
  auto* copy = static_cast<uint8_t*>(std::malloc(sign_out->len));
  std::memcpy(copy, sign_out->data, sign_out->len);
  QUIVO_FreeMem(session, sign_out->data);
  sign_out->data = copy;
  return code;
}

/// Loses a piece of one byte.
int32_t SeededStrHashUpdateMem(EngineSession session, EngineStream* stream, const DataBlob_t* data) {
  if (data->len == 1 && Has("piece-of-one")) return 0;
  return QUIVO_StrHashUpdateMem(session, stream, data);
}

/// Reads a path that is not there.
int32_t SeededStrSignFile(EngineSession session, const SignParamRecord* param, const char* data, const char* sign_in,
                          const char* sign_out) {
  if (Has("null-fault") && *static_cast<const volatile char*>(sign_in) == 0) sign_in = nullptr;
  return QUIVO_StrSignFile(session, param, data, sign_in, sign_out);
}

/// Reports a bad signature with a code that callers take for success.
int32_t SeededVerifyMem(EngineSession session, const VerifyParamRecord* param, const DataBlob_t* data,
                        const DataBlob_t* sign_in, DataBlob_t* sign_out, VerifyResultRecord* result) {
  const int32_t code = QUIVO_VerifyMem(session, param, data, sign_in, sign_out, result);
  return code != 0 && Has("wrong-code") ? 1 : code;
}

/// Hands out a buffer although it fails.
int32_t SeededDecryptMem(EngineSession session, const DecryptParamRecord* param, const DataBlob_t* in, DataBlob_t* out,
                         DecryptResultRecord* result) {
  const int32_t code = QUIVO_DecryptMem(session, param, in, out, result);
  if (code == 0 || session == nullptr || !Has("result-on-failure")) return code;
  *out = {16, static_cast<uint8_t*>(QUIVO_AllocMem(session, 16))};
  return code;
}

/// Keeps what it should free.
int32_t SeededFreeMem(EngineSession session, void* buffer) {
  return Has("leak") && session != nullptr ? 0 : QUIVO_FreeMem(session, buffer);
}

/// Does not come back.
int32_t SeededGetErrorText(int32_t code, char* buffer, uint32_t size) {
  while (Has("silence")) Sleep(1000);
  return QUIVO_GetErrorText(code, buffer, size);
}

/// Writes behind the end of a record.
int32_t SeededSignedInfoFile(EngineSession session, const char* file, SignedInfoResultRecord* info) {
  const int32_t code = QUIVO_SignedInfoFile(session, file, info);
  if (code == 0 && Has("longer-record")) info[1].reserved = 1;
  return code;
}

}  // extern "C"
