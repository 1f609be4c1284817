// Type information of the module's interfaces: loaded from the module's own file, once per interface.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <atomic>

#include "com/module.h"

namespace com {

/// The full path of the module's file. Fails with HRESULT_FROM_WIN32 of the platform's error.
HRESULT ModulePath(wchar_t (&path)[MAX_PATH]);

/// Loads the type library in the module's own file (resource 1); the caller releases it.
HRESULT LoadOwnTypeLib(ITypeLib** library);

/// Loads the type information of `iid` and registers `cleanUp` for the end of the module.
HRESULT LoadTypeInfo(REFIID iid, std::atomic<ITypeInfo*>& cache, module::CleanUp cleanUp);

/// The type information of one interface; lent, never released by the caller.
template <class Interface>
class TypeInfo {
 public:
  static HRESULT get(ITypeInfo** info) {
    if (!cache_.load()) {
      HRESULT hr = LoadTypeInfo(__uuidof(Interface), cache_, [] {
        if (ITypeInfo* info = cache_.exchange(nullptr)) info->Release();
      });
      if (FAILED(hr)) return hr;
    }
    *info = cache_.load();
    return S_OK;
  }

 private:
  static inline std::atomic<ITypeInfo*> cache_;
};

}  // namespace com
