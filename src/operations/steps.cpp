#include "operations/steps.h"

namespace operations {

HRESULT ReadDataAndSignature(const VARIANT& data, convert::ByteInput& dataIn, const VARIANT& signature,
                             convert::ByteInput& signatureIn) {
  HRESULT hr = ReadByteVariant(data, dataIn);
  if (SUCCEEDED(hr)) hr = ReadByteVariant(signature, signatureIn);
  if (FAILED(hr)) return ToModuleHResult(hr);
  bool bothGiven = dataIn.isGiven() && signatureIn.isGiven();
  return bothGiven && dataIn.isVbsForm() != signatureIn.isVbsForm() ? E_QUIVO_INVALID_ARGUMENT : S_OK;
}

void ReturnText(const wchar_t* text, VARIANT* out) {
  if (out) com::OverwriteWithText(out, com::Bstr(SysAllocString(text)));
}

}  // namespace operations
