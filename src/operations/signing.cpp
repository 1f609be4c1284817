// Signing of byte arrays and of files.
#include "objects/operation_params.h"
#include "operations/steps.h"

STDMETHODIMP QUIVO::SignMem(ISignParam* param, VARIANT data, VARIANT sign_in, VARIANT* sign_out) {
  SignParam* options = com::Own<SignParam>(param);
  if (!options || !sign_out) return E_QUIVO_INVALID_ARGUMENT;
  ByteInput bytes;
  ByteInput signature;
  HRESULT hr = ReadDataAndSignature(data, bytes, sign_in, signature);
  if (FAILED(hr)) return hr;
  SessionUse session(session_);
  DataBlob_t out{};
  int32_t code = QUIVO_SignMem(session, options->record(), bytes.blob(), signature.blob(), &out);
  HRESULT released = FirstFailure(bytes.release(), signature.release());
  if (code != 0) return ToModuleHResult(code);
  // The form follows the data, never the existing signature.
  hr = WriteByteVariant(session, out, bytes.isVbsForm(), sign_out);
  return ToModuleHResult(FirstFailure(released, hr));
}

namespace {

HRESULT SignFileWith(decltype(QUIVO_SignFile) engineSign, QUIVO& quivo, ISignParam* param, BSTR data, BSTR sign_in,
                     BSTR sign_out) {
  if (quivo.isUntrusted()) return E_QUIVO_ACCESS_DENIED;
  SignParam* options = com::Own<SignParam>(param);
  if (!options) return E_QUIVO_INVALID_ARGUMENT;
  AnsiArguments paths;
  const char* dataPath = paths.optional(data);
  const char* signaturePath = paths.optional(sign_in);
  const char* outPath = paths.required(sign_out);
  if (FAILED(paths.failure())) return paths.failure();
  SessionUse session(quivo.session());
  return ToModuleHResult(engineSign(session, options->record(), dataPath, signaturePath, outPath));
}

}  // namespace

STDMETHODIMP QUIVO::SignFile(ISignParam* param, BSTR data, BSTR sign_in, BSTR sign_out) {
  return SignFileWith(QUIVO_SignFile, *this, param, data, sign_in, sign_out);
}

STDMETHODIMP QUIVO::StrSignFile(ISignParam* param, BSTR data, BSTR sign_in, BSTR sign_out) {
  return SignFileWith(QUIVO_StrSignFile, *this, param, data, sign_in, sign_out);
}
