#include "errors/result.h"

namespace errors {

HRESULT ToModuleHResult(int32_t result) {
  if (result == S_OK || result == S_FALSE) return result;
  if (result < 0 && HRESULT_FACILITY(result) != FACILITY_WIN32) return result;
  return static_cast<HRESULT>(kEngineRange << 16 | (static_cast<uint32_t>(result) & 0xFFFF));
}

HRESULT LastErrorResult() { return HRESULT_FROM_WIN32(GetLastError()); }

const char* ModuleErrorText(uint16_t code) {
  switch (code) {
    case E_QUIVO_ALREADY_INITIALIZED & 0xFFFF:
      return "Объект уже инициализирован";
    case E_QUIVO_ENGINE_EXCEPTION & 0xFFFF:
      return "Неизвестное исключение библиотеки QUIVO";
    default:
      return "Неизвестная дополнительная ошибка";
  }
}

}  // namespace errors
