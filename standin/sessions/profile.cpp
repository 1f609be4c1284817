#include "standin/sessions/profile.h"

#include <windows.h>

#include "standin/base/codes.h"
#include "standin/base/owned.h"

namespace standin {
namespace {

constexpr char kProfilesKey[] = "SOFTWARE\\KORVENTA\\tavl\\Profiles";

Owned<RegCloseKey> OpenKey(HKEY parent, const char* name) {
  HKEY key = nullptr;
  return Owned<RegCloseKey>(RegOpenKeyExA(parent, name, 0, KEY_READ, &key) == ERROR_SUCCESS ? key : nullptr);
}

std::string TextIn(const Owned<RegCloseKey>& key, const char* name) {
  char value[4096] = {};
  DWORD size = sizeof value;
  if (RegGetValueA(key.get(), nullptr, name, RRF_RT_REG_SZ, nullptr, value, &size) != ERROR_SUCCESS) return {};
  return value;
}

std::string SelectedSubkey(const Owned<RegCloseKey>& profiles) {
  DWORD selected = 0;
  DWORD size = sizeof selected;
  const LSTATUS status = RegGetValueA(profiles.get(), nullptr, "CurSel", RRF_RT_REG_DWORD, nullptr, &selected, &size);
  return status == ERROR_SUCCESS ? std::to_string(selected) : "0";
}

}  // namespace

SessionSource ReadProfile(const std::string& name) {
  const Owned<RegCloseKey> profiles = OpenKey(HKEY_CURRENT_USER, kProfilesKey);
  if (profiles == nullptr) Fail(kProfileNotFound);
  const std::string selected = name.empty() ? SelectedSubkey(profiles) : std::string();
  char subkey[256];
  for (DWORD i = 0;; ++i) {
    DWORD length = sizeof subkey;
    if (RegEnumKeyExA(profiles.get(), i, subkey, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    const Owned<RegCloseKey> profile = OpenKey(profiles.get(), subkey);
    if (profile == nullptr) continue;
    const bool wanted =
        name.empty() ? selected == subkey : lstrcmpiA(TextIn(profile, "ProfileName").c_str(), name.c_str()) == 0;
    if (wanted) return {TextIn(profile, "pse"), TextIn(profile, "pincode"), TextIn(profile, "localstore"), 0};
  }
  Fail(kProfileNotFound);
}

}  // namespace standin
