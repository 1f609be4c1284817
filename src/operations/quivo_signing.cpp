// Signing of byte arrays and of files.
#include "objects/operation_params.h"
#include "operations/steps.h"

using namespace operations;

STDMETHODIMP QUIVO::SignMem(ISignParam* param, VARIANT data, VARIANT sign_in, VARIANT* sign_out) {
  SignParam* options = com::Own<SignParam>(param);
  if (!options || !sign_out) return E_QUIVO_INVALID_ARGUMENT;
  convert::ByteInput bytes;
  convert::ByteInput signature;
  HRESULT hr = ReadDataAndSignature(data, bytes, sign_in, signature);
  if (FAILED(hr)) return hr;
  SessionUse session(owner());
  engine::Buffer out(session);
  int32_t code = QUIVO_SignMem(session, options->record(), bytes.blob(), signature.blob(), out.receive());
  HRESULT released = FirstFailure(bytes.release(), signature.release());
  if (code != 0) {
    out.leave();
    return ToModuleHResult(code);
  }
  // The form follows the data, never the existing signature.
  hr = WriteByteVariant(out, bytes.isVbsForm(), sign_out);
  return ToModuleHResult(FirstFailure(released, hr));
}

namespace {

HRESULT SignFileWith(decltype(QUIVO_SignFile) engineSign, QUIVO& quivo, ISignParam* param, BSTR data, BSTR sign_in,
                     BSTR sign_out) {
  if (quivo.isUntrusted()) return E_QUIVO_ACCESS_DENIED;
  SignParam* options = com::Own<SignParam>(param);
  if (!options) return E_QUIVO_INVALID_ARGUMENT;
  AnsiArguments paths(Optional{data}, Optional{sign_in}, Required{sign_out});
  if (FAILED(paths.failure())) return paths.failure();
  SessionUse session(quivo.owner());
  return ToModuleHResult(engineSign(session, options->record(), paths.get<0>(), paths.get<1>(), paths.get<2>()));
}

}  // namespace

STDMETHODIMP QUIVO::SignFile(ISignParam* param, BSTR data, BSTR sign_in, BSTR sign_out) {
  return SignFileWith(QUIVO_SignFile, *this, param, data, sign_in, sign_out);
}

STDMETHODIMP QUIVO::StrSignFile(ISignParam* param, BSTR data, BSTR sign_in, BSTR sign_out) {
  return SignFileWith(QUIVO_StrSignFile, *this, param, data, sign_in, sign_out);
}
