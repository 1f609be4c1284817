#include "operations/steps.h"

HRESULT ReadDataAndSignature(const VARIANT& data, ByteInput& dataIn, const VARIANT& signature, ByteInput& signatureIn) {
  HRESULT hr = ReadByteVariant(data, dataIn);
  if (SUCCEEDED(hr)) hr = ReadByteVariant(signature, signatureIn);
  if (FAILED(hr)) return ToModuleHResult(hr);
  bool bothGiven = dataIn.isGiven() && signatureIn.isGiven();
  return bothGiven && dataIn.isVbsForm() != signatureIn.isVbsForm() ? E_QUIVO_INVALID_ARGUMENT : S_OK;
}

HRESULT WriteVerified(EngineSession session, HRESULT told, const DataBlob_t& message, bool vbsForm, VARIANT* out) {
  if (told == S_OK) return WriteByteVariant(session, message, vbsForm, out);
  if (message.data) QUIVO_FreeMem(session, message.data);
  return told;
}

void TellText(const wchar_t* text, VARIANT* out) {
  if (out) com::OverwriteWithText(out, com::Bstr(SysAllocString(text)));
}
