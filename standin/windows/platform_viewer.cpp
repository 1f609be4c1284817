#include "standin/windows/platform_viewer.h"

#include <windows.h>

#include <wincrypt.h>

#include <string>

#include "standin/base/owned.h"

namespace standin {
namespace {

/// Loads the library from the system folder only.
Owned<FreeLibrary> SystemLibrary(const wchar_t* name) {
  wchar_t folder[MAX_PATH] = {};
  GetSystemDirectoryW(folder, MAX_PATH);
  return Owned<FreeLibrary>(LoadLibraryW((std::wstring(folder) + L'\\' + name).c_str()));
}

Viewing View(DWORD kind, const void* context) {
  using ViewContext = BOOL(WINAPI*)(DWORD, const void*, HWND, LPCWSTR, DWORD, void*);
  const Owned<FreeLibrary> viewer = SystemLibrary(L"cryptui.dll");
  const FARPROC address = viewer == nullptr ? nullptr : GetProcAddress(viewer.get(), "CryptUIDlgViewContext");
  const auto viewContext = reinterpret_cast<ViewContext>(reinterpret_cast<void*>(address));
  if (context == nullptr || viewContext == nullptr) return Viewing::kUnavailable;
  const bool shown = viewContext(kind, context, GetActiveWindow(), nullptr, 0, nullptr) != 0;
  return shown ? Viewing::kShown : Viewing::kRefused;
}

}  // namespace

Viewing ViewCertificate(ByteView der) {
  const Owned<CertFreeCertificateContext> context(
      CertCreateCertificateContext(X509_ASN_ENCODING, der.data(), static_cast<DWORD>(der.size())));
  return View(CERT_STORE_CERTIFICATE_CONTEXT, context.get());
}

Viewing ViewCrl(ByteView der) {
  const Owned<CertFreeCRLContext> context(
      CertCreateCRLContext(X509_ASN_ENCODING, der.data(), static_cast<DWORD>(der.size())));
  return View(CERT_STORE_CRL_CONTEXT, context.get());
}

}  // namespace standin
