// Verification of byte arrays and of files.
#include "objects/sign_status.h"
#include "objects/verify_param.h"
#include "operations/steps.h"

STDMETHODIMP QUIVO::VerifyMem(IVerifyParam* pIVerifyParam, VARIANT data, VARIANT sign_in, VARIANT* sign_out,
                              VARIANT* VerifyResults) {
  VerifyParam* options = com::Own<VerifyParam>(pIVerifyParam);
  if (!options || !sign_out || !VerifyResults) return E_QUIVO_INVALID_ARGUMENT;
  ByteInput bytes;
  ByteInput signature;
  HRESULT hr = ReadDataAndSignature(data, bytes, sign_in, signature);
  if (FAILED(hr)) return hr;
  SessionUse session(session_);
  VerifyResultRecord result{};
  DataBlob_t out{};
  int32_t code = QUIVO_VerifyMem(session, options->record(), bytes.blob(), signature.blob(), &out, &result);
  HRESULT released = FirstFailure(bytes.release(), signature.release());
  // A failed verification tells its signatures too.
  hr = SignStatusArrayFromResult(session, &result, VerifyResults);
  if (code != 0) return ToModuleHResult(code);
  hr = WriteVerified(session, hr, out, bytes.isVbsForm(), sign_out);
  return ToModuleHResult(FirstFailure(released, hr));
}

namespace {

HRESULT VerifyFileWith(decltype(QUIVO_VerifyFile) engineVerify, QUIVO& quivo, IVerifyParam* param, BSTR data,
                       BSTR sign_in, BSTR sign_out, VARIANT* results) {
  if (quivo.isUntrusted()) return E_QUIVO_ACCESS_DENIED;
  VerifyParam* options = com::Own<VerifyParam>(param);
  if (!options || !results) return E_QUIVO_INVALID_ARGUMENT;
  AnsiArguments paths;
  const char* dataPath = paths.optional(data);
  const char* signaturePath = paths.required(sign_in);
  const char* outPath = paths.optional(sign_out);
  if (FAILED(paths.failure())) return paths.failure();
  SessionUse session(quivo.session());
  VerifyResultRecord result{};
  int32_t code = engineVerify(session, options->record(), dataPath, signaturePath, outPath, &result);
  HRESULT hr = SignStatusArrayFromResult(session, &result, results);
  return ToModuleHResult(code != 0 ? code : hr);
}

}  // namespace

STDMETHODIMP QUIVO::VerifyFile(IVerifyParam* pIVerifyParam, BSTR data, BSTR sign_in, BSTR sign_out,
                               VARIANT* VerifyResults) {
  return VerifyFileWith(QUIVO_VerifyFile, *this, pIVerifyParam, data, sign_in, sign_out, VerifyResults);
}

STDMETHODIMP QUIVO::StrVerifyFile(IVerifyParam* pIVerifyParam, BSTR data, BSTR sign_in, BSTR sign_out,
                                  VARIANT* VerifyResults) {
  return VerifyFileWith(QUIVO_StrVerifyFile, *this, pIVerifyParam, data, sign_in, sign_out, VerifyResults);
}
