#include "traces.h"

namespace proof {
namespace {

constexpr const wchar_t* kKeysNote = L"keys";

/// Closes itself.
class Key {
 public:
  Key(HKEY root, const std::wstring& path, REGSAM access) { RegOpenKeyExW(root, path.c_str(), 0, access, &key_); }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

bool Create(HKEY root, const std::wstring& path) {
  HKEY key = nullptr;
  if (RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) != ERROR_SUCCESS)
    return false;
  RegCloseKey(key);
  return true;
}

std::wstring RootLetter(HKEY root) { return root == HKEY_LOCAL_MACHINE ? L"M" : L"U"; }

}  // namespace

bool KeyExists(HKEY root, const std::wstring& path) { return Key(root, path, KEY_READ).get() != nullptr; }

std::vector<std::wstring> SubkeysOf(HKEY root, const std::wstring& path) {
  std::vector<std::wstring> names;
  const Key key(root, path, KEY_READ);
  wchar_t name[256];
  for (DWORD i = 0; key.get() != nullptr; ++i) {
    DWORD length = 256;
    if (RegEnumKeyExW(key.get(), i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    names.emplace_back(name, length);
  }
  return names;
}

bool CreateNotedKey(HKEY root, const std::wstring& path) {
  for (size_t end = path.find(L'\\');; end = path.find(L'\\', end + 1)) {
    const std::wstring part = path.substr(0, end);
    if (!KeyExists(root, part)) {
      WriteNote(kKeysNote, Note(kKeysNote) + RootLetter(root) + part + L"|");
      if (!Create(root, part)) return false;
    }
    if (end == std::wstring::npos) return true;
  }
}

void WriteText(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& text) {
  const Key key(root, path, KEY_WRITE);
  const DWORD size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  RegSetValueExW(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), size);
}

std::wstring Note(const wchar_t* name) {
  DWORD size = 0;
  RegGetValueW(HKEY_CURRENT_USER, kNotesKey, name, RRF_RT_REG_SZ, nullptr, nullptr, &size);
  std::wstring text(size / sizeof(wchar_t), L'\0');
  if (RegGetValueW(HKEY_CURRENT_USER, kNotesKey, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) != ERROR_SUCCESS)
    return {};
  return text.substr(0, text.find(L'\0'));
}

void WriteNote(const wchar_t* name, const std::wstring& text) {
  Create(HKEY_CURRENT_USER, kNotesKey);
  WriteText(HKEY_CURRENT_USER, kNotesKey, name, text);
}

std::vector<std::wstring> RemoveNotedKeys() {
  std::vector<std::wstring> left;
  std::wstring keys = Note(kKeysNote);
  // The last key first: a key is noted before those in it.
  while (!keys.empty()) {
    keys.pop_back();
    const size_t start = keys.rfind(L'|') + 1;
    const std::wstring path = keys.substr(start + 1);
    const HKEY root = keys[start] == L'M' ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    // Refused if the key has subkeys.
    RegDeleteKeyW(root, path.c_str());
    if (KeyExists(root, path)) left.push_back(keys.substr(start));
    keys.resize(start);
  }
  WriteNote(kKeysNote, L"");
  return left;
}

void RemoveNotes() { RegDeleteKeyW(HKEY_CURRENT_USER, kNotesKey); }

}  // namespace proof
