// Calls of the platform's viewer.
#include "standin/windows/platform_viewer.h"

#include <windows.h>

#include <wincrypt.h>

#include <memory>
#include <string>

namespace standin {
namespace {

struct FreeCertificate {
  void operator()(const CERT_CONTEXT* context) const { CertFreeCertificateContext(context); }
};
struct FreeCrl {
  void operator()(const CRL_CONTEXT* context) const { CertFreeCRLContext(context); }
};

/// A library of the system folder and nothing else.
class SystemLibrary {
 public:
  explicit SystemLibrary(const wchar_t* name) {
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    library_ = LoadLibraryW((std::wstring(folder) + L'\\' + name).c_str());
  }
  ~SystemLibrary() {
    if (library_ != nullptr) FreeLibrary(library_);
  }
  SystemLibrary(const SystemLibrary&) = delete;
  SystemLibrary& operator=(const SystemLibrary&) = delete;

  template <typename Function>
  Function function(const char* name) const {
    const FARPROC address = library_ == nullptr ? nullptr : GetProcAddress(library_, name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
  }

 private:
  HMODULE library_ = nullptr;
};

Viewing View(DWORD kind, const void* context) {
  using ViewContext = BOOL(WINAPI*)(DWORD, const void*, HWND, LPCWSTR, DWORD, void*);
  const SystemLibrary viewer(L"cryptui.dll");
  const ViewContext viewContext = viewer.function<ViewContext>("CryptUIDlgViewContext");
  if (context == nullptr || viewContext == nullptr) return Viewing::kUnavailable;
  const bool shown = viewContext(kind, context, GetActiveWindow(), nullptr, 0, nullptr) != 0;
  return shown ? Viewing::kShown : Viewing::kRefused;
}

}  // namespace

Viewing ViewCertificate(ByteView der) {
  const std::unique_ptr<const CERT_CONTEXT, FreeCertificate> context(
      CertCreateCertificateContext(X509_ASN_ENCODING, der.data(), static_cast<DWORD>(der.size())));
  return View(CERT_STORE_CERTIFICATE_CONTEXT, context.get());
}

Viewing ViewCrl(ByteView der) {
  const std::unique_ptr<const CRL_CONTEXT, FreeCrl> context(
      CertCreateCRLContext(X509_ASN_ENCODING, der.data(), static_cast<DWORD>(der.size())));
  return View(CERT_STORE_CRL_CONTEXT, context.get());
}

}  // namespace standin
