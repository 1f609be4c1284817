// The module's own file, and the type library in it.
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace com {

/// The full path of the module's file. Fails with HRESULT_FROM_WIN32 of the platform's error.
HRESULT ModulePath(wchar_t (&path)[MAX_PATH]);

/// Loads the type library in the module's own file (resource 1); the caller releases it.
HRESULT LoadOwnTypeLib(ITypeLib** library);

}  // namespace com
