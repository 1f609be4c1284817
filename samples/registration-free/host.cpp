// Uses the module without registration: creates every class, signs a file, lists the certificates of the store.
//   host PROFILE FILE SIGNATURE
// In the folder of host.exe lie host.exe.manifest, tavlcom.dll, tavlcom.manifest and tavl1.dll. The platform reads both
// manifests when the process starts; from then on CoCreateInstance finds the classes in every thread, and so does the
// module itself when it gives objects back.
#include <windows.h>

#include <oleauto.h>

#include <cstdio>

#include "quivocom.h"

namespace {

/// Ends the program with `what` and the result when the call before failed.
void Check(HRESULT hr, const char* what) {
  if (SUCCEEDED(hr)) return;
  std::printf("%s: 0x%08lX\n", what, static_cast<unsigned long>(hr));
  ExitProcess(1);
}

template <class Interface>
Interface* Create(REFCLSID clsid) {
  Interface* object = nullptr;
  Check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), reinterpret_cast<void**>(&object)),
        "CoCreateInstance");
  return object;
}

/// Creates the classes that the module's type library names.
void CreateEveryClass() {
  ITypeLib* library = nullptr;
  Check(LoadTypeLibEx(L"tavlcom.dll", REGKIND_NONE, &library), "LoadTypeLibEx");
  int created = 0;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ITypeInfo* info = nullptr;
    TYPEATTR* attributes = nullptr;
    Check(library->GetTypeInfo(i, &info), "GetTypeInfo");
    Check(info->GetTypeAttr(&attributes), "GetTypeAttr");
    if (attributes->typekind == TKIND_COCLASS) {
      Create<IDispatch>(attributes->guid)->Release();
      ++created;
    }
    info->ReleaseTypeAttr(attributes);
    info->Release();
  }
  library->Release();
  std::printf("%d classes were created\n", created);
}

void Sign(IQUIVO* quivo, const wchar_t* file, const wchar_t* signature) {
  ISignParam* param = Create<ISignParam>(__uuidof(SignParam));
  Check(param->put_flag(static_cast<SignParamFlag_t>(Flag_Sign_Pkcs7 | Flag_Sign_SendSert)), "flag");
  BSTR in = SysAllocString(file);
  BSTR out = SysAllocString(signature);
  Check(quivo->SignFile(param, in, nullptr, out), "SignFile");
  SysFreeString(in);
  SysFreeString(out);
  param->Release();
  std::printf("the file was signed\n");
}

/// FindCert creates a Certificate for each certificate that it found.
void ListCertificates(IQUIVO* quivo) {
  IFindParam* param = Create<IFindParam>(__uuidof(FindParam));
  Check(param->put_flag(static_cast<FindParamFlag_t>(Flag_Find_All | Flag_Find_NoVerify)), "flag");
  Check(param->put_info(Field_Subject), "info");
  VARIANT found;
  VariantInit(&found);
  Check(quivo->FindCert(param, &found), "FindCert");
  LONG last = -1;
  Check(SafeArrayGetUBound(found.parray, 1, &last), "FindCert");
  for (LONG i = 0; i <= last; ++i) {
    IDispatch* element = nullptr;
    ICertificate* certificate = nullptr;
    BSTR subject = nullptr;
    Check(SafeArrayGetElement(found.parray, &i, &element), "SafeArrayGetElement");
    Check(element->QueryInterface(__uuidof(ICertificate), reinterpret_cast<void**>(&certificate)), "Certificate");
    Check(certificate->get_subject(&subject), "subject");
    std::printf("found: %S\n", subject);
    SysFreeString(subject);
    certificate->Release();
    element->Release();
  }
  VariantClear(&found);
  param->Release();
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 4) {
    std::printf("usage: host PROFILE FILE SIGNATURE\n");
    return 2;
  }
  Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "CoInitializeEx");
  CreateEveryClass();
  IQUIVO* quivo = Create<IQUIVO>(__uuidof(QUIVO));
  BSTR profile = SysAllocString(arguments[1]);
  Check(quivo->Initialize(profile, static_cast<Init_Flag_t>(Flag_Init_Nocrlupdate | Flag_Init_Noldap)), "Initialize");
  SysFreeString(profile);
  Sign(quivo, arguments[2], arguments[3]);
  ListCertificates(quivo);
  Check(quivo->Uninitialize(), "Uninitialize");
  quivo->Release();
  CoUninitialize();
  return 0;
}
