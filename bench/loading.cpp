// Load, first object of a class, unload: of the shipped module, which loads its engine, and of a library of the
// platform.
#include <windows.h>

#include <objbase.h>
#include <quivocom.h>

#include "measure.h"
#include "support/ptr.h"

namespace {

void LoadAndUnload(const wchar_t* path, REFCLSID clsid) {
  HMODULE library = LoadLibraryW(path);
  if (!library) bench::Check(HRESULT_FROM_WIN32(GetLastError()), "LoadLibrary");
  using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
  auto entry = reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
  {
    Ptr<IClassFactory> factory;
    bench::Check(entry(clsid, IID_IClassFactory, factory.voidOut()), "DllGetClassObject");
    Ptr<IUnknown> object;
    bench::Check(factory->CreateInstance(nullptr, IID_IUnknown, object.voidOut()), "CreateInstance");
  }
  FreeLibrary(library);
}

}  // namespace

int main(int count, char** arguments) {
  bench::Effort effort = bench::Effort::of(count, arguments);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  CLSID dictionary{};
  bench::Check(CLSIDFromProgID(L"Scripting.Dictionary", &dictionary), "CLSIDFromProgID");
  bench::PrintCalls(
      "load and unload", effort, [] { LoadAndUnload(L"tavlcom.dll", __uuidof(CertId)); },
      [&] { LoadAndUnload(L"scrrun.dll", dictionary); });
  std::fflush(nullptr);
}
