// The profile that the user has selected, read from the registry; it is not tied to the open session.

#include "com/owner.h"
#include "com/variant.h"
#include "convert/strings.h"
#include "errors/result.h"
#include "session/session.h"

namespace session {

STDMETHODIMP Session::GetCurrentProfileNameVBS(VARIANT* var_profile) {
  // The registry functions return their errors and do not set the thread's last error; this method reports
  // the last error all the same, on purpose: "The last error of others" in docs/behaviour.md.
  DWORD status = GetLastError();
  constexpr DWORD kNameSize = 261;
  char name[kNameSize + 1] = {};

  com::RegKey profiles;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, "SOFTWARE\\KORVENTA\\tavl\\Profiles", 0, KEY_READ, profiles.receive()) != 0)
    return errors::LastErrorResult();
  DWORD selected = 0;
  DWORD size = sizeof(selected);
  if (RegQueryValueExA(profiles.get(), "CurSel", nullptr, nullptr, reinterpret_cast<BYTE*>(&selected), &size) != 0)
    return errors::LastErrorResult();
  char number[12];
  convert::Format(number, sizeof(number), "%d", static_cast<int>(selected));
  com::RegKey profile;
  if (RegOpenKeyExA(profiles.get(), number, 0, KEY_READ, profile.receive()) != 0) return errors::LastErrorResult();
  size = kNameSize;
  if (RegQueryValueExA(profile.get(), "ProfileName", nullptr, nullptr, reinterpret_cast<BYTE*>(name), &size) != 0)
    status = GetLastError();
  if (status != 0) return HRESULT_FROM_WIN32(status);

  com::Bstr text;
  HRESULT hr = convert::AnsiToBstr(name, text.inOut());
  if (FAILED(hr)) return errors::ToModuleHResult(hr);
  if (!var_profile) return E_QUIVO_INVALID_ARGUMENT;
  com::OverwriteWithText(var_profile, std::move(text));
  return S_OK;
}

}  // namespace session
