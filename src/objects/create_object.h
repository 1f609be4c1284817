// Objects that the module hands to its callers: made through COM like any client's, then filled directly.
#pragma once

#include <objbase.h>

#include "com/object.h"
#include "com/ref.h"

namespace objects {

/// A new object of a class of this module. `object` is lent by `out`.
/// Fails as CoCreateInstance does; E_UNEXPECTED when COM serves the class from elsewhere.
template <class Class>
HRESULT CreateObject(com::Ref<typename Class::Primary>& out, Class** object) {
  HRESULT hr =
      CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_ALL, __uuidof(typename Class::Primary), out.receiveVoid());
  if (FAILED(hr)) return hr;
  *object = com::Own<Class>(out.get());
  return *object ? S_OK : E_UNEXPECTED;
}

}  // namespace objects
