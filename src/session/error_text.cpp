// Texts of result codes: the module's own from its table, all others from the engine.
#include "com/owner.h"
#include "com/variant.h"
#include "convert/strings.h"
#include "errors/result.h"
#include "session/quivo.h"

STDMETHODIMP QUIVO::GetPKIErrorText(LONG err_code, BSTR* err_text) {
  if (!err_text) return E_QUIVO_INVALID_ARGUMENT;
  uint32_t range = static_cast<uint32_t>(err_code) >> 16;
  uint16_t low = static_cast<uint16_t>(err_code);
  if (range == kModuleRange) return ToModuleHResult(AnsiToBstr(ModuleErrorText(low), err_text));
  constexpr uint32_t kSize = 512;
  char text[kSize + 1] = {};
  QUIVO_GetErrorText(range == kEngineRange ? low : err_code, text, kSize);
  return ToModuleHResult(AnsiToBstr(text, err_text));
}

STDMETHODIMP QUIVO::GetPKIErrorTextVBS(LONG err_code, VARIANT* err_text) {
  com::Bstr text;
  HRESULT hr = GetPKIErrorText(err_code, text.inOut());
  if (FAILED(hr)) return ToModuleHResult(hr);
  if (!err_text) return E_QUIVO_INVALID_ARGUMENT;
  com::OverwriteWithText(err_text, std::move(text));
  return S_OK;
}
