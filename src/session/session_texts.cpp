// Texts of result codes: the module's own from its table, all others from the engine.
#include "com/owner.h"
#include "com/variant.h"
#include "convert/strings.h"
#include "errors/result.h"
#include "session/session.h"

namespace session {

STDMETHODIMP Session::GetPKIErrorText(LONG err_code, BSTR* err_text) {
  if (!err_text) return E_QUIVO_INVALID_ARGUMENT;
  uint32_t range = static_cast<uint32_t>(err_code) >> 16;
  uint16_t low = static_cast<uint16_t>(err_code);
  if (range == errors::kModuleRange)
    return errors::ToModuleHResult(convert::AnsiToBstr(errors::ModuleErrorText(low), err_text));
  constexpr uint32_t kSize = 512;
  char text[kSize + 1] = {};
  QUIVO_GetErrorText(range == errors::kEngineRange ? low : err_code, text, kSize);
  return errors::ToModuleHResult(convert::AnsiToBstr(text, err_text));
}

STDMETHODIMP Session::GetPKIErrorTextVBS(LONG err_code, VARIANT* err_text) {
  com::Bstr text;
  HRESULT hr = GetPKIErrorText(err_code, text.inOut());
  if (FAILED(hr)) return errors::ToModuleHResult(hr);
  if (!err_text) return E_QUIVO_INVALID_ARGUMENT;
  com::OverwriteWithText(err_text, std::move(text));
  return S_OK;
}

}  // namespace session
