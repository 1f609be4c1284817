#include "calls/client.h"

namespace bench {
namespace {

HMODULE Load(const wchar_t* path) {
  HMODULE library = LoadLibraryW(path);
  if (!library) Check(HRESULT_FROM_WIN32(GetLastError()), "LoadLibrary");
  return library;
}

}  // namespace

Ptr<IClassFactory> FactoryIn(HMODULE library, REFCLSID clsid) {
  using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
  auto entry = reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
  Ptr<IClassFactory> factory;
  Check(entry(clsid, IID_IClassFactory, factory.voidOut()), "DllGetClassObject");
  return factory;
}

HMODULE TheModule() {
  static HMODULE library = Load(L"tavlcom.dll");
  return library;
}

Ptr<IClassFactory> DictionaryFactory() {
  static HMODULE library = Load(L"scrrun.dll");
  CLSID clsid{};
  Check(CLSIDFromProgID(L"Scripting.Dictionary", &clsid), "CLSIDFromProgID");
  return FactoryIn(library, clsid);
}

Ptr<IDispatch> NewDictionary() {
  Ptr<IDispatch> made;
  Check(DictionaryFactory()->CreateInstance(nullptr, IID_IDispatch, made.voidOut()), "CreateInstance");
  return made;
}

DISPID IdOf(IDispatch* object, const wchar_t* name) {
  auto* text = const_cast<wchar_t*>(name);
  DISPID id = DISPID_UNKNOWN;
  Check(object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id), "GetIDsOfNames");
  return id;
}

VARIANT ByteArray(ULONG size) {
  VARIANT bytes{};
  V_VT(&bytes) = VT_ARRAY | VT_UI1;
  V_ARRAY(&bytes) = SafeArrayCreateVector(VT_UI1, 0, size);
  if (!V_ARRAY(&bytes)) Check(E_OUTOFMEMORY, "an array of bytes");
  memset(V_ARRAY(&bytes)->pvData, 1, size);
  return bytes;
}

VARIANT VariantArray(ULONG size) {
  VARIANT elements{};
  V_VT(&elements) = VT_ARRAY | VT_VARIANT;
  V_ARRAY(&elements) = SafeArrayCreateVector(VT_VARIANT, 0, size);
  if (!V_ARRAY(&elements)) Check(E_OUTOFMEMORY, "an array of VARIANTs");
  auto* element = static_cast<VARIANT*>(V_ARRAY(&elements)->pvData);
  for (ULONG i = 0; i < size; ++i) {
    V_VT(&element[i]) = VT_UI1;
    V_UI1(&element[i]) = static_cast<BYTE>(i);
  }
  return elements;
}

}  // namespace bench
