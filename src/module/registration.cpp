#include "module/registration.h"

#include <oleauto.h>

#include <cstdio>

#include "com/owner.h"
#include "com/ref.h"
#include "com/type_library.h"
#include "engine/library.h"
#include "module/class_table.h"
#include "module/registrar.h"
#include "quivocom.h"

namespace module {
namespace {

/// Whether the type library is registered for this platform; a registry that cannot be read counts as "yes".
bool IsLibraryRegistered() {
  wchar_t id[39];
  StringFromGUID2(LIBID_QUIVOCOMLib, id, std::size(id));
  wchar_t path[80] = {};
  _snwprintf(path, std::size(path) - 1, L"TypeLib\\%ls\\1.0\\0\\win64", id);
  com::RegKey key;
  return RegOpenKeyExW(HKEY_CLASSES_ROOT, path, 0, KEY_QUERY_VALUE, key.receive()) != ERROR_FILE_NOT_FOUND;
}

HRESULT UnregisterLibrary() {
  HRESULT hr = UnRegisterTypeLib(LIBID_QUIVOCOMLib, 1, 0, LOCALE_NEUTRAL, SYS_WIN64);
  // The result for a library that is not registered is not documented, and differs between platforms.
  return FAILED(hr) && !IsLibraryRegistered() ? S_OK : hr;
}

}  // namespace

HRESULT Register() {
  HRESULT loaded = engine::Load();
  if (FAILED(loaded)) return loaded;
  for (const ClassEntry& entry : ClassTable()) {
    HRESULT hr = registrar::Register(entry.script);
    if (FAILED(hr)) return hr;
  }
  wchar_t path[MAX_PATH];
  com::Ref<ITypeLib> library;
  HRESULT hr = com::LoadOwnTypeLib(library.receive());
  if (SUCCEEDED(hr)) hr = com::ModulePath(path);
  return FAILED(hr) ? hr : RegisterTypeLib(library.get(), path, nullptr);
}

HRESULT Unregister() {
  HRESULT first = S_OK;
  for (const ClassEntry& entry : ClassTable()) {
    HRESULT hr = registrar::Unregister(entry.script);
    if (SUCCEEDED(first)) first = hr;
  }
  HRESULT hr = UnregisterLibrary();
  return FAILED(first) ? first : hr;
}

}  // namespace module
