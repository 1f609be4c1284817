#include "com/type_info.h"

#include <oleauto.h>

#include "com/ref.h"

namespace com {

HRESULT ModulePath(wchar_t (&path)[MAX_PATH]) {
  DWORD length = GetModuleFileNameW(module::Instance(), path, MAX_PATH);
  if (length == 0) return HRESULT_FROM_WIN32(GetLastError());
  return length < MAX_PATH ? S_OK : HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER);
}

HRESULT LoadOwnTypeLib(ITypeLib** library) {
  wchar_t path[MAX_PATH];
  HRESULT hr = ModulePath(path);
  return FAILED(hr) ? hr : LoadTypeLibEx(path, REGKIND_NONE, library);
}

HRESULT LoadTypeInfo(REFIID iid, std::atomic<ITypeInfo*>& cache, module::CleanUp cleanUp) {
  module::Guard guard;
  if (cache.load()) return S_OK;
  Ref<ITypeLib> library;
  HRESULT hr = LoadOwnTypeLib(library.receive());
  if (FAILED(hr)) return hr;
  ITypeInfo* info = nullptr;
  hr = library->GetTypeInfoOfGuid(iid, &info);
  if (FAILED(hr)) return hr;
  cache.store(info);
  module::AtDetach(cleanUp);
  return S_OK;
}

}  // namespace com
