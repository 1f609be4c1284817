// The registration of the module: its classes and its type library.
#pragma once

#include <windows.h>

namespace module {

/// Registers the classes in the order of the class table, then the type library, for the whole machine. The first
/// failure ends it and is returned; without an engine nothing is written.
HRESULT Register();

/// Unregisters everything. A failure does not stop the removal of the rest; the first one is returned. What is not
/// registered is no failure.
HRESULT Unregister();

}  // namespace module
