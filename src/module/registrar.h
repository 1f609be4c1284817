// The registrar: applies a class's registration script to the machine's registry.
#pragma once

#include <windows.h>

namespace registrar {

/// Run the script in resource `script` (type REGISTRY) of the module, in which %MODULE% stands for the
/// module's path. A script that cannot be parsed fails before the first key is written; a registry failure
/// is returned as HRESULT_FROM_WIN32.
HRESULT Register(WORD script);
HRESULT Unregister(WORD script);

}  // namespace registrar
