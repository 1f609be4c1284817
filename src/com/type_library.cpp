#include "com/type_library.h"

#include <oleauto.h>

#include "com/module.h"

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

}  // namespace com
