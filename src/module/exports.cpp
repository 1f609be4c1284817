// The entry points of the module.
#include <windows.h>

#include <oleauto.h>

#include <atomic>
#include <cstdio>

#include "com/module.h"
#include "com/owner.h"
#include "com/ref.h"
#include "com/type_library.h"
#include "legacy/file_open.h"
#include "module/class_table.h"
#include "module/registrar.h"
#include "quivocom.h"

namespace {

constexpr size_t kClasses = 18;
std::atomic<IClassFactory*> factories[kClasses];

void ReleaseFactories() {
  for (auto& factory : factories)
    if (IClassFactory* cached = factory.exchange(nullptr)) cached->Release();
}

/// The factory of the class at `index`, made on the first request and kept until the module is unloaded.
IClassFactory* FactoryOf(size_t index) {
  if (!factories[index]) {
    com::module::Guard guard;
    if (!factories[index]) factories[index] = com::NewClassFactory(ClassTable()[index].create);
  }
  return factories[index];
}

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

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(instance);
    com::module::Attach(instance);
    // Registered first, so that the factories go before all else.
    com::module::AtDetach(ReleaseFactories);
  }
  // At the end of the process nothing may be called any more; the system takes everything back.
  if (reason == DLL_PROCESS_DETACH && !processEnds) com::module::Detach();
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (!com::module::IsAttached()) return E_UNEXPECTED;
  auto classes = ClassTable();
  static_assert(std::size(factories) == kClasses);
  for (size_t i = 0; i < classes.size(); ++i) {
    if (*classes[i].clsid != clsid) continue;
    IClassFactory* factory = FactoryOf(i);
    return factory ? factory->QueryInterface(iid, out) : E_OUTOFMEMORY;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return com::module::LockCount() == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
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

STDAPI DllUnregisterServer() {
  // A failure does not stop the removal of the rest; the first one is returned.
  HRESULT result = S_OK;
  for (const ClassEntry& entry : ClassTable()) {
    HRESULT hr = registrar::Unregister(entry.script);
    if (SUCCEEDED(result)) result = hr;
  }
  HRESULT hr = UnregisterLibrary();
  return FAILED(result) ? result : hr;
}

extern "C" void CALLBACK FileOpen(HWND, HINSTANCE, LPSTR commandLine, int) { OpenProtectedFile(commandLine); }
