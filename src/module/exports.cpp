// The entry points of the module.
#include "com/module.h"
#include "engine/library.h"
#include "legacy/file_open.h"
#include "module/class_table.h"
#include "module/registration.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(instance);
    com::module::Attach(instance);
    // Registered first, so that the factories go before all else.
    com::module::AtDetach(module::ReleaseFactories);
  }
  // At the end of the process nothing may be called any more; the system takes everything back.
  if (reason == DLL_PROCESS_DETACH && !processEnds) {
    com::module::Detach();
    engine::Unload();
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  return com::module::IsAttached() ? module::GetFactory(clsid, iid, out) : E_UNEXPECTED;
}

STDAPI DllCanUnloadNow() { return com::module::LockCount() == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() { return module::Register(); }

STDAPI DllUnregisterServer() { return module::Unregister(); }

extern "C" void CALLBACK FileOpen(HWND, HINSTANCE, LPSTR commandLine, int) { legacy::OpenProtectedFile(commandLine); }
