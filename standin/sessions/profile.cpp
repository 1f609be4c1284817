// Reading of profiles from the registry.
#include "standin/sessions/profile.h"

#include <windows.h>

#include <cstdio>
#include <optional>

#include "standin/base/codes.h"

namespace standin {
namespace {

constexpr char kProfilesKey[] = "SOFTWARE\\KORVENTA\\tavl\\Profiles";

class RegistryKey {
 public:
  RegistryKey(HKEY parent, const char* name) {
    if (RegOpenKeyExA(parent, name, 0, KEY_READ, &key_) != ERROR_SUCCESS) key_ = nullptr;
  }
  ~RegistryKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  HKEY get() const { return key_; }
  bool isOpen() const { return key_ != nullptr; }

  std::string text(const char* name) const {
    char value[4096] = {};
    DWORD size = sizeof value;
    if (RegGetValueA(key_, nullptr, name, RRF_RT_REG_SZ, nullptr, value, &size) != ERROR_SUCCESS) return {};
    return value;
  }

  std::optional<DWORD> number(const char* name) const {
    DWORD value = 0;
    DWORD size = sizeof value;
    if (RegGetValueA(key_, nullptr, name, RRF_RT_REG_DWORD, nullptr, &value, &size) != ERROR_SUCCESS) return {};
    return value;
  }

 private:
  HKEY key_ = nullptr;
};

SessionSource SourceIn(const RegistryKey& profile) {
  return {profile.text("pse"), profile.text("pincode"), profile.text("localstore"), 0};
}

std::string SelectedSubkey(const RegistryKey& profiles) {
  char name[16];
  std::snprintf(name, sizeof name, "%lu", static_cast<unsigned long>(profiles.number("CurSel").value_or(0)));
  return name;
}

}  // namespace

SessionSource ReadProfile(const std::string& name) {
  const RegistryKey profiles(HKEY_CURRENT_USER, kProfilesKey);
  if (!profiles.isOpen()) Fail(kProfileNotFound);
  const std::string selected = name.empty() ? SelectedSubkey(profiles) : std::string();
  char subkey[256];
  for (DWORD i = 0;; ++i) {
    DWORD length = sizeof subkey;
    if (RegEnumKeyExA(profiles.get(), i, subkey, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    const RegistryKey profile(profiles.get(), subkey);
    if (!profile.isOpen()) continue;
    const bool wanted =
        name.empty() ? selected == subkey : lstrcmpiA(profile.text("ProfileName").c_str(), name.c_str()) == 0;
    if (wanted) return SourceIn(profile);
  }
  Fail(kProfileNotFound);
}

}  // namespace standin
