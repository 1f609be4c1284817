#include "support/registry.h"

#include <cwchar>
#include <vector>

namespace {

HKEY OpenForReading(HKEY root, const std::wstring& path) {
  HKEY key = nullptr;
  RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key);
  return key;
}

void Write(HKEY root, const std::wstring& path, const wchar_t* name, DWORD type, const void* data, DWORD size) {
  HKEY key = nullptr;
  RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
  if (data != nullptr) RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
  RegCloseKey(key);
}

DWORD SizeOf(const wchar_t* text) { return static_cast<DWORD>((std::wcslen(text) + 1) * sizeof(wchar_t)); }

void AddValues(HKEY key, const std::wstring& path, RegistryTree& tree) {
  wchar_t name[256];
  std::vector<BYTE> data(4096);
  for (DWORD i = 0;; ++i) {
    DWORD nameLength = 256, type = 0, size = static_cast<DWORD>(data.size());
    if (RegEnumValueW(key, i, name, &nameLength, nullptr, &type, data.data(), &size) != ERROR_SUCCESS) return;
    const std::wstring where = *name == 0 ? path : path + L":" + name;
    if (type == REG_SZ) {
      tree[where] = std::wstring(reinterpret_cast<wchar_t*>(data.data()));
    } else {
      tree[where] = L"(type " + std::to_wstring(type) + L")";
    }
  }
}

void AddKey(HKEY root, const std::wstring& from, const std::wstring& path, RegistryTree& tree) {
  const HKEY key = OpenForReading(root, from);
  if (key == nullptr) return;
  if (!path.empty()) tree[path] = kNoValue;
  AddValues(key, path, tree);
  wchar_t name[256];
  for (DWORD i = 0;; ++i) {
    DWORD length = 256;
    if (RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    AddKey(key, name, path.empty() ? name : path + L"\\" + name, tree);
  }
  RegCloseKey(key);
}

}  // namespace

RegistryTree ReadTree(HKEY root, const std::wstring& path) {
  RegistryTree tree;
  AddKey(root, path, L"", tree);
  return tree;
}

bool KeyExists(HKEY root, const std::wstring& path) {
  const HKEY key = OpenForReading(root, path);
  if (key == nullptr) return false;
  RegCloseKey(key);
  return true;
}

void WriteKey(HKEY root, const std::wstring& path, const wchar_t* value) {
  Write(root, path, nullptr, REG_SZ, value, value == nullptr ? 0 : SizeOf(value));
}

void WriteVolatileKey(HKEY root, const std::wstring& path) {
  HKEY key = nullptr;
  RegCreateKeyExW(root, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &key, nullptr);
  RegCloseKey(key);
}

void WriteDword(HKEY root, const std::wstring& path, const wchar_t* name, DWORD value) {
  Write(root, path, name, REG_DWORD, &value, sizeof value);
}

void WriteText(HKEY root, const std::wstring& path, const wchar_t* name, const wchar_t* value) {
  Write(root, path, name, REG_SZ, value, SizeOf(value));
}

void DeleteTree(HKEY root, const std::wstring& path) { RegDeleteTreeW(root, path.c_str()); }

PrivateRoot::PrivateRoot(HKEY predefined) : predefined_(predefined) {
  static int serial = 0;
  path_ = L"Software\\tavlcom-contract\\" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++serial);
  RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr);
  RegOverridePredefKey(predefined_, key_);
}

PrivateRoot::~PrivateRoot() {
  RegOverridePredefKey(predefined_, nullptr);
  RegCloseKey(key_);
  RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
}
