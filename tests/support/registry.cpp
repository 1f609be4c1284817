#include "support/registry.h"

#include <cwchar>
#include <vector>

namespace {

HKEY openForReading(HKEY root, const std::wstring& path) {
  HKEY key = nullptr;
  RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key);
  return key;
}

void write(HKEY root, const std::wstring& path, const wchar_t* name, DWORD type, const void* data, DWORD size) {
  HKEY key = nullptr;
  RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
  if (data != nullptr) RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
  RegCloseKey(key);
}

DWORD sizeOf(const wchar_t* text) { return static_cast<DWORD>((std::wcslen(text) + 1) * sizeof(wchar_t)); }

void addValues(HKEY key, const std::wstring& path, RegistryTree& tree) {
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

void addKey(HKEY root, const std::wstring& from, const std::wstring& path, RegistryTree& tree) {
  const HKEY key = openForReading(root, from);
  if (key == nullptr) return;
  if (!path.empty()) tree[path] = kNoValue;
  addValues(key, path, tree);
  wchar_t name[256];
  for (DWORD i = 0;; ++i) {
    DWORD length = 256;
    if (RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    addKey(key, name, path.empty() ? name : path + L"\\" + name, tree);
  }
  RegCloseKey(key);
}

}  // namespace

RegistryTree ReadTree(HKEY root, const std::wstring& path) {
  RegistryTree tree;
  addKey(root, path, L"", tree);
  return tree;
}

bool KeyExists(HKEY root, const std::wstring& path) {
  const HKEY key = openForReading(root, path);
  if (key == nullptr) return false;
  RegCloseKey(key);
  return true;
}

void WriteKey(HKEY root, const std::wstring& path, const wchar_t* value) {
  write(root, path, nullptr, REG_SZ, value, value == nullptr ? 0 : sizeOf(value));
}

void WriteVolatileKey(HKEY root, const std::wstring& path) {
  HKEY key = nullptr;
  RegCreateKeyExW(root, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &key, nullptr);
  RegCloseKey(key);
}

void WriteDword(HKEY root, const std::wstring& path, const wchar_t* name, DWORD value) {
  write(root, path, name, REG_DWORD, &value, sizeof value);
}

void WriteText(HKEY root, const std::wstring& path, const wchar_t* name, const wchar_t* value) {
  write(root, path, name, REG_SZ, value, sizeOf(value));
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
