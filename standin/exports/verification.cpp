// Exported functions: verification.
#include "standin/operations/verification.h"
#include "standin/exports/guard.h"
#include "standin/operations/combined.h"

using namespace standin;

namespace {

/// Runs a verification and returns its code. The result lists the signatures even if they fail.
template <typename Verify>
int32_t Verifying(EngineSession session, const VerifyParamRecord* param, VerifyResultRecord* result, Verify verify) {
  int32_t code = kOk;
  const int32_t failure = InSession(session, [&](Session& s) {
    Required(result) = {};
    const Verification verification = verify(s, Required(param));
    FillResult(*result, verification, *param, s.buffers);
    code = verification.code;
  });
  return failure != kOk ? failure : code;
}

}  // namespace

int32_t QUIVO_VerifyMem(EngineSession session, const VerifyParamRecord* param, const DataBlob_t* data,
                        const DataBlob_t* sign_in, DataBlob_t* sign_out, VerifyResultRecord* result) {
  return Verifying(session, param, result, [&](Session& s, const VerifyParamRecord& p) {
    return VerifyMemory(s, p, OptionalViewOf(data), ViewOf(sign_in), Required(sign_out));
  });
}

int32_t QUIVO_VerifyFile(EngineSession session, const VerifyParamRecord* param, const char* data, const char* sign_in,
                         const char* sign_out, VerifyResultRecord* result) {
  return Verifying(session, param, result,
                   [&](Session& s, const VerifyParamRecord& p) { return VerifyFiles(s, p, data, sign_in, sign_out); });
}

decltype(QUIVO_VerifyFile) QUIVO_StrVerifyFile [[gnu::alias("QUIVO_VerifyFile")]];

int32_t QUIVO_FreeVerifyResult(EngineSession session, VerifyResultRecord* result) {
  return InSession(session, [&](Session& s) { FreeRecord(Required(result), s.buffers); });
}

int32_t QUIVO_SignedInfoFile(EngineSession session, const char* file, SignedInfoResultRecord* info) {
  return InSession(session, [&](Session&) {
    Required(info) = {};
    info->signatureCount = CountSignatures(file);
  });
}

int32_t QUIVO_FreeSignedInfoResult(EngineSession session, SignedInfoResultRecord* info) {
  return InSession(session, [&](Session&) { Required(info) = {}; });
}

int32_t QUIVO_StrVerifyInitMem(EngineSession session, const VerifyParamRecord*, const DataBlob_t* sign_in,
                               EngineStream* stream) {
  return InSession(session, stream,
                   [&](Session& s) { return s.addStream(std::make_unique<VerifyStream>(s, ViewOf(sign_in))); });
}

int32_t QUIVO_StrVerifyUpdateMem(EngineSession session, const VerifyParamRecord*, EngineStream* stream,
                                 const DataBlob_t* data) {
  return InSession(session, [&](Session& s) { s.stream<VerifyStream>(stream).update(ViewOf(data)); });
}

int32_t QUIVO_StrVerifyFinalMem(EngineSession session, const VerifyParamRecord* param, EngineStream* stream,
                                DataBlob_t* sign_out, VerifyResultRecord* result) {
  return Verifying(session, param, result, [&](Session& s, const VerifyParamRecord& p) {
    DataBlob_t& out = Required(sign_out);
    return s.endStream<VerifyStream>(stream)->finish(p, out);
  });
}

int32_t QUIVO_DecryptAndVerifyFile(EngineSession session, const DecryptParamRecord* decrypt,
                                   const VerifyParamRecord* verify, const char* file_in, const char* file_out,
                                   DecryptResultRecord* decrypted, VerifyResultRecord* verified) {
  return Verifying(session, verify, verified, [&](Session& s, const VerifyParamRecord& p) {
    return DecryptAndVerifyFile(s, Required(decrypt), p, file_in, file_out, Required(decrypted));
  });
}
