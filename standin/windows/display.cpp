#include "standin/windows/display.h"

#include <windows.h>

#include <ctime>
#include <cwchar>
#include <string>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/times.h"
#include "standin/certificates/der_objects.h"
#include "standin/certificates/names.h"
#include "standin/windows/platform_viewer.h"

namespace standin {
namespace {

bool StationIsVisible() {
  USEROBJECTFLAGS flags{};
  DWORD needed = 0;
  const HWINSTA station = GetProcessWindowStation();
  return station != nullptr && GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, &needed) != 0 &&
         (flags.dwFlags & WSF_VISIBLE) != 0;
}

bool WindowCanBeMade() {
  const HWND window = CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                      GetModuleHandleW(nullptr), nullptr);
  if (window == nullptr) return false;
  DestroyWindow(window);
  return true;
}

std::wstring DateText(const ASN1_TIME* time) {
  if (time == nullptr) return L"-";
  const time_t seconds = SecondsOf(time);
  const std::tm* parts = std::gmtime(&seconds);
  wchar_t text[32] = L"-";
  if (parts != nullptr) std::wcsftime(text, sizeof text / sizeof *text, L"%d.%m.%Y %H:%M:%S UTC", parts);
  return text;
}

/// A message box, for systems whose viewer shows certificates only.
void Describe(X509_CRL* crl) {
  const int revoked = sk_X509_REVOKED_num(X509_CRL_get_REVOKED(crl));
  const std::wstring text = L"Издатель: " + WideFromUtf8(NameText(X509_CRL_get_issuer(crl))) + L"\nВыпущен: " +
                            DateText(X509_CRL_get0_lastUpdate(crl)) + L"\nСледующий: " +
                            DateText(X509_CRL_get0_nextUpdate(crl)) + L"\nОтозвано сертификатов: " +
                            std::to_wstring(revoked < 0 ? 0 : revoked);
  if (MessageBoxW(GetActiveWindow(), text.c_str(), L"Список отозванных сертификатов", MB_OK | MB_ICONINFORMATION) ==
      0) {
    FailWithLastError();
  }
}

}  // namespace

void RequireDisplay() {
  if (!StationIsVisible() || !WindowCanBeMade()) Fail(kNoDisplay);
}

void ShowCertificate(X509* certificate) {
  RequireDisplay();
  if (ViewCertificate(DerOf(certificate)) == Viewing::kUnavailable) FailWithLastError();
}

void ShowCrl(X509_CRL* crl) {
  RequireDisplay();
  if (ViewCrl(DerOf(crl)) != Viewing::kShown) Describe(crl);
}

}  // namespace standin
