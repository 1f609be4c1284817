// The result space of the module's methods, the mapping into it, and the module's own texts.
#pragma once

#include <windows.h>

#include <cstdint>

/// The module's own conditions.
constexpr HRESULT E_QUIVO_ALREADY_INITIALIZED = static_cast<HRESULT>(0xE0680001);
constexpr HRESULT E_QUIVO_ENGINE_EXCEPTION = static_cast<HRESULT>(0xE0680002);

/// Conditions that the module raises in the engine's range: a refused argument, a file method in
/// untrusted-data mode, no memory for a result.
constexpr HRESULT E_QUIVO_INVALID_ARGUMENT = static_cast<HRESULT>(0xE0690057);
constexpr HRESULT E_QUIVO_ACCESS_DENIED = static_cast<HRESULT>(0xE0690005);
constexpr HRESULT E_QUIVO_OUT_OF_MEMORY = static_cast<HRESULT>(0xE069000E);

namespace errors {

/// High words of the two ranges.
constexpr uint32_t kModuleRange = 0xE068;
constexpr uint32_t kEngineRange = 0xE069;

/// The HRESULT that a method returns for an engine result or a platform failure: 0, 1 and negative values
/// of facilities other than Win32 pass, everything else is re-based to 0xE0690000 + its low 16 bits.
HRESULT ToModuleHResult(int32_t result);

/// The failure of the last platform call of this thread, as HRESULT_FROM_WIN32 gives it.
HRESULT LastErrorResult();

/// The text of a module code (the low 16 bits of 0xE068xxxx), NUL-terminated, Windows-1251.
const char* ModuleErrorText(uint16_t code);

}  // namespace errors
