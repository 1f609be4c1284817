// Exported functions: encryption and decryption.
#include "standin/operations/encryption.h"
#include "standin/base/records.h"
#include "standin/exports/guard.h"
#include "standin/operations/decryption.h"

using namespace standin;

namespace {

/// Runs a decryption. The code is also the status of the result, which has no certificate after a failure.
template <typename Decrypt>
int32_t Decrypting(EngineSession session, const DecryptParamRecord* param, DecryptResultRecord* result,
                   Decrypt decrypt) {
  const int32_t code = InSession(session, [&](Session& s) {
    Required(result) = {};
    decrypt(s, Required(param));
  });
  if (code != kOk && result != nullptr) result->status = code;
  return code;
}

}  // namespace

int32_t QUIVO_EncryptMem(EngineSession session, const EncryptParamRecord* param, const DataBlob_t* in,
                         DataBlob_t* out) {
  return InSession(session, out, [&](Session& s) { return EncryptMemory(s, Required(param), ViewOf(in)); });
}

int32_t QUIVO_EncryptFile(EngineSession session, const EncryptParamRecord* param, const char* file_in,
                          const char* file_out) {
  return InSession(session, [&](Session& s) { EncryptFiles(s, Required(param), file_in, file_out); });
}

decltype(QUIVO_EncryptFile) QUIVO_StrEncryptFile [[gnu::alias("QUIVO_EncryptFile")]];

int32_t QUIVO_DecryptMem(EngineSession session, const DecryptParamRecord* param, const DataBlob_t* in, DataBlob_t* out,
                         DecryptResultRecord* result) {
  return Decrypting(session, param, result, [&](Session& s, const DecryptParamRecord& p) {
    DataBlob_t& target = Required(out);
    target = DecryptMemory(s, p, ViewOf(in), *result);
  });
}

int32_t QUIVO_DecryptFile(EngineSession session, const DecryptParamRecord* param, const char* file_in,
                          const char* file_out, DecryptResultRecord* result) {
  return Decrypting(session, param, result,
                    [&](Session& s, const DecryptParamRecord& p) { DecryptFiles(s, p, file_in, file_out, *result); });
}

decltype(QUIVO_DecryptFile) QUIVO_StrDecryptFile [[gnu::alias("QUIVO_DecryptFile")]];

int32_t QUIVO_FreeDecryptResult(EngineSession session, DecryptResultRecord* result) {
  return InSession(session, [&](Session& s) { FreeRecord(Required(result), s.buffers); });
}

int32_t QUIVO_StrEncryptInitMem(EngineSession session, const EncryptParamRecord* param, EngineStream* stream) {
  return InSession(session, stream,
                   [&](Session& s) { return s.addStream(std::make_unique<EncryptStream>(s, Required(param))); });
}

int32_t QUIVO_StrEncryptUpdateMem(EngineSession session, const EncryptParamRecord*, EngineStream* stream,
                                  const DataBlob_t* in, DataBlob_t* out) {
  return InSession(session, out, [&](Session& s) { return s.stream<EncryptStream>(stream).update(ViewOf(in)); });
}

int32_t QUIVO_StrEncryptFinalMem(EngineSession session, const EncryptParamRecord*, EngineStream* stream,
                                 DataBlob_t* out) {
  return InSession(session, out, [&](Session& s) { return s.endStream<EncryptStream>(stream)->finish(); });
}

int32_t QUIVO_StrDecryptInitMem(EngineSession session, const DecryptParamRecord* param, const DataBlob_t* in,
                                int32_t* left, EngineStream* stream) {
  return InSession(session, stream, [&](Session& s) {
    // Every piece is used whole.
    Required(left) = 0;
    return s.addStream(std::make_unique<DecryptStream>(s, Required(param).mycert, ViewOf(in)));
  });
}

int32_t QUIVO_StrDecryptUpdateMem(EngineSession session, const DecryptParamRecord*, EngineStream* stream,
                                  const DataBlob_t* in, int32_t* left, DataBlob_t* out) {
  return InSession(session, out, [&](Session& s) {
    Required(left) = 0;
    return s.stream<DecryptStream>(stream).update(ViewOf(in));
  });
}

int32_t QUIVO_StrDecryptFinalMem(EngineSession session, const DecryptParamRecord* param, EngineStream* stream,
                                 DecryptResultRecord* result) {
  return Decrypting(session, param, result, [&](Session& s, const DecryptParamRecord& p) {
    s.endStream<DecryptStream>(stream)->finish(p.info, *result);
  });
}
