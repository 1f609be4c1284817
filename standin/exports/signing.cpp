// Exported functions: signing.
#include "standin/operations/signing.h"
#include "standin/exports/guard.h"
#include "standin/operations/combined.h"

using namespace standin;

int32_t QUIVO_SignMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* data,
                      const DataBlob_t* sign_in, DataBlob_t* sign_out) {
  return InSession(session, sign_out,
                   [&](Session& s) { return SignMemory(s, param, OptionalViewOf(data), OptionalViewOf(sign_in)); });
}

int32_t QUIVO_SignFile(EngineSession session, const SignParamRecord* param, const char* data, const char* sign_in,
                       const char* sign_out) {
  return InSession(session, [&](Session& s) { SignFiles(s, param, data, sign_in, sign_out); });
}

decltype(QUIVO_SignFile) QUIVO_StrSignFile [[gnu::alias("QUIVO_SignFile")]];

int32_t QUIVO_StrSignInitMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* sign_in,
                             EngineStream* stream) {
  return InSession(session, stream, [&](Session& s) {
    return s.addStream(std::make_unique<SignStream>(s, param, OptionalViewOf(sign_in)));
  });
}

int32_t QUIVO_StrSignUpdateMem(EngineSession session, const SignParamRecord*, EngineStream* stream,
                               const DataBlob_t* data) {
  return InSession(session, [&](Session& s) { s.stream<SignStream>(stream).update(ViewOf(data)); });
}

int32_t QUIVO_StrSignFinalMem(EngineSession session, const SignParamRecord*, EngineStream* stream,
                              DataBlob_t* sign_out) {
  return InSession(session, sign_out, [&](Session& s) { return s.endStream<SignStream>(stream)->finish(); });
}

int32_t QUIVO_SignAndEncryptFile(EngineSession session, const SignParamRecord* sign, const EncryptParamRecord* encrypt,
                                 const char* file_in, const char* file_out) {
  return InSession(session,
                   [&](Session& s) { SignAndEncryptFile(s, Required(sign), Required(encrypt), file_in, file_out); });
}
