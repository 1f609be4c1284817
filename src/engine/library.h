// The engine's library: found and bound when the module first needs it, and never where a stranger may have put one.
#pragma once

#include <windows.h>

namespace engine {

/// Loads tavl1.dll from the module's folder, else from the system folder or an absolute folder of PATH, and binds every
/// function that the module calls. The engine stays loaded until Unload; a failure may be followed by another try.
/// Returns 0x8007007E if there is no engine, 0x8007007F if it lacks a function, or why the platform refused to load it.
/// Not to be called under the loader lock.
HRESULT Load();

/// The function that the engine of the last try lacked; null if it lacked none.
const char* MissingFunction();

/// At the end of the module.
void Unload();

}  // namespace engine
