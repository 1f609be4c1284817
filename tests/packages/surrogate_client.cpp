// A client of an object in the platform's surrogate process: hashes bytes there, and prints the hash.
//   surrogate_client PROFILE
// Ends with 0 when everything succeeded. Objects of parameters are not tried: they have to lie in the process of who
// takes them, and Wine starts a surrogate for each class.
#include <windows.h>

#include <oleauto.h>

#include <cstdio>
#include <cstring>

#include "quivocom.h"
#include "support/ptr.h"

namespace {

bool Succeeded(const char* step, HRESULT hr) {
  std::printf("%s: 0x%08lX\n", step, static_cast<unsigned long>(hr));
  return hr == S_OK;
}

template <class Class, class Interface>
bool Create(const char* step, Ptr<Interface>& object) {
  return Succeeded(
      step, CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_LOCAL_SERVER, __uuidof(Interface), object.voidOut()));
}

VARIANT BytesOf(const char* text) {
  VARIANT bytes;
  VariantInit(&bytes);
  const ULONG size = static_cast<ULONG>(std::strlen(text));
  bytes.vt = VT_ARRAY | VT_UI1;
  bytes.parray = SafeArrayCreateVector(VT_UI1, 0, size);
  if (bytes.parray != nullptr) std::memcpy(bytes.parray->pvData, text, size);
  return bytes;
}

int Run(const wchar_t* profile) {
  Ptr<IQUIVO> quivo;
  if (!Create<QUIVO>("QUIVO", quivo)) return 1;
  BSTR name = SysAllocString(profile);
  const HRESULT opened = quivo->Initialize(name, static_cast<Init_Flag_t>(Flag_Init_Nocrlupdate | Flag_Init_Noldap));
  SysFreeString(name);
  if (!Succeeded("Initialize", opened)) return 1;
  VARIANT data = BytesOf("bytes of another process"), hash;
  VariantInit(&hash);
  bool ok = Succeeded("HashMem", quivo->HashMem(data, &hash)) && hash.vt == (VT_ARRAY | VT_UI1);
  if (ok) {
    const BYTE* bytes = static_cast<const BYTE*>(hash.parray->pvData);
    for (ULONG i = 0; i < hash.parray->rgsabound[0].cElements; ++i) std::printf("%02x", bytes[i]);
    std::printf("\n");
  }
  VariantClear(&data);
  VariantClear(&hash);
  ok = Succeeded("Uninitialize", quivo->Uninitialize()) && ok;
  // The module is in the process of the surrogate alone.
  return ok && GetModuleHandleW(L"tavlcom.dll") == nullptr ? 0 : 1;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 2 || FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 2;
  const int result = Run(arguments[1]);
  CoUninitialize();
  return result;
}
