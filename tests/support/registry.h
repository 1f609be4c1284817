// The registry in tests: a root of one's own in the place of HKEY_CLASSES_ROOT, and whole trees as text.
#pragma once

#include <windows.h>

#include <map>
#include <string>

/// "path" for a key's default value, "path:name" for a named one; the path is relative to the key that was read.
/// A key without a default value has the text kNoValue; a value that is no string shows its type.
using RegistryTree = std::map<std::wstring, std::wstring>;
constexpr const wchar_t* kNoValue = L"(none)";

RegistryTree ReadTree(HKEY root, const std::wstring& path = L"");
bool KeyExists(HKEY root, const std::wstring& path);
/// Creates a key, with a default value if one is given.
void WriteKey(HKEY root, const std::wstring& path, const wchar_t* value = nullptr);
/// Creates a key that only volatile keys can be created below.
void WriteVolatileKey(HKEY root, const std::wstring& path);
void WriteDword(HKEY root, const std::wstring& path, const wchar_t* name, DWORD value);
void WriteText(HKEY root, const std::wstring& path, const wchar_t* name, const wchar_t* value);
void DeleteTree(HKEY root, const std::wstring& path);

/// While it lives, a predefined key is an empty key of this process.
class PrivateRoot {
 public:
  explicit PrivateRoot(HKEY predefined);
  PrivateRoot(const PrivateRoot&) = delete;
  PrivateRoot& operator=(const PrivateRoot&) = delete;
  ~PrivateRoot();

  HKEY key() const { return key_; }

 private:
  HKEY predefined_;
  std::wstring path_;
  HKEY key_ = nullptr;
};
