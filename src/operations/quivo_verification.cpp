// Verification of byte arrays and of files.
#include "objects/sign_status.h"
#include "objects/verify_param.h"
#include "operations/steps.h"

using namespace operations;
using objects::SignStatusArrayFromResult;

STDMETHODIMP QUIVO::VerifyMem(IVerifyParam* pIVerifyParam, VARIANT data, VARIANT sign_in, VARIANT* sign_out,
                              VARIANT* VerifyResults) {
  VerifyParam* options = com::Own<VerifyParam>(pIVerifyParam);
  if (!options || !sign_out || !VerifyResults) return E_QUIVO_INVALID_ARGUMENT;
  convert::ByteInput bytes;
  convert::ByteInput signature;
  HRESULT hr = ReadDataAndSignature(data, bytes, sign_in, signature);
  if (FAILED(hr)) return hr;
  SessionUse session(owner());
  engine::VerifyResult result(session);
  engine::Buffer out(session);
  int32_t code =
      QUIVO_VerifyMem(session, options->record(), bytes.blob(), signature.blob(), out.receive(), result.receive());
  HRESULT released = FirstFailure(bytes.release(), signature.release());
  // A failed verification reports its signatures too.
  hr = SignStatusArrayFromResult(&result, VerifyResults);
  if (code != 0) {
    out.leave();
    return ToModuleHResult(code);
  }
  if (hr == S_OK) hr = WriteByteVariant(out, bytes.isVbsForm(), sign_out);
  return ToModuleHResult(FirstFailure(released, hr));
}

namespace {

HRESULT VerifyFileWith(decltype(QUIVO_VerifyFile) engineVerify, QUIVO& quivo, IVerifyParam* param, BSTR data,
                       BSTR sign_in, BSTR sign_out, VARIANT* results) {
  if (quivo.isUntrusted()) return E_QUIVO_ACCESS_DENIED;
  VerifyParam* options = com::Own<VerifyParam>(param);
  if (!options || !results) return E_QUIVO_INVALID_ARGUMENT;
  AnsiArguments paths(Optional{data}, Required{sign_in}, Optional{sign_out});
  if (FAILED(paths.failure())) return paths.failure();
  SessionUse session(quivo.owner());
  engine::VerifyResult result(session);
  int32_t code =
      engineVerify(session, options->record(), paths.get<0>(), paths.get<1>(), paths.get<2>(), result.receive());
  HRESULT hr = SignStatusArrayFromResult(&result, results);
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
