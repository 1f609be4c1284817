// Exported functions: signing.
#include "standin/operations/signing.h"
#include "standin/exports/guard.h"
#include "standin/operations/combined.h"

using namespace standin;

int32_t QUIVO_SignMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* data,
                      const DataBlob_t* sign_in, DataBlob_t* sign_out) {
  return inSession(session, [&](Session& s) {
    DataBlob_t& out = required(sign_out);
    out = signMemory(s, param, optionalViewOf(data), optionalViewOf(sign_in));
  });
}

int32_t QUIVO_SignFile(EngineSession session, const SignParamRecord* param, const char* data, const char* sign_in,
                       const char* sign_out) {
  return inSession(session, [&](Session& s) { signFile(s, param, data, sign_in, sign_out); });
}

int32_t QUIVO_StrSignFile(EngineSession session, const SignParamRecord* param, const char* data, const char* sign_in,
                          const char* sign_out) {
  return QUIVO_SignFile(session, param, data, sign_in, sign_out);
}

int32_t QUIVO_StrSignInitMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* sign_in,
                             EngineStream* stream) {
  return inSession(session, [&](Session& s) {
    EngineStream& handle = required(stream);
    handle = s.addStream(std::make_unique<SignStream>(s, param, optionalViewOf(sign_in)));
  });
}

int32_t QUIVO_StrSignUpdateMem(EngineSession session, const SignParamRecord*, EngineStream* stream,
                               const DataBlob_t* data) {
  return inSession(session, [&](Session& s) { s.stream<SignStream>(stream).update(viewOf(data)); });
}

int32_t QUIVO_StrSignFinalMem(EngineSession session, const SignParamRecord*, EngineStream* stream,
                              DataBlob_t* sign_out) {
  return inSession(session, [&](Session& s) {
    DataBlob_t& out = required(sign_out);
    out = s.endStream<SignStream>(stream)->finish();
  });
}

int32_t QUIVO_SignAndEncryptFile(EngineSession session, const SignParamRecord* sign, const EncryptParamRecord* encrypt,
                                 const char* file_in, const char* file_out) {
  return inSession(session,
                   [&](Session& s) { signAndEncryptFile(s, required(sign), required(encrypt), file_in, file_out); });
}
