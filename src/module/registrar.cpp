#include "module/registrar.h"

#include "com/module.h"
#include "com/owner.h"
#include "com/type_library.h"
#include "module/registrar_script.h"

namespace registrar {
namespace {

// Scripts hold identifiers and short texts; a value that names the module holds its path.
constexpr int kMaxText = MAX_PATH + 64;

/// A text of a script as the registry takes it, with %MODULE% replaced.
class RegistryText {
 public:
  HRESULT assign(std::string_view text) {
    constexpr std::string_view kModule = "%MODULE%";
    length_ = 0;
    while (!text.empty()) {
      HRESULT hr = S_OK;
      if (text.starts_with(kModule)) {
        wchar_t path[MAX_PATH];
        hr = com::ModulePath(path);
        for (const wchar_t* next = path; SUCCEEDED(hr) && *next; ++next) hr = append(*next);
        text.remove_prefix(kModule.size());
      } else {
        hr = append(static_cast<unsigned char>(text.front()));
        text.remove_prefix(1);
      }
      if (FAILED(hr)) return hr;
    }
    text_[length_] = L'\0';
    return S_OK;
  }
  const wchar_t* get() const { return text_; }
  DWORD bytes() const { return static_cast<DWORD>((length_ + 1) * sizeof(wchar_t)); }

 private:
  HRESULT append(wchar_t character) {
    if (length_ + 1 >= kMaxText) return HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER);
    text_[length_++] = character;
    return S_OK;
  }

  wchar_t text_[kMaxText];
  int length_ = 0;
};

HRESULT SetText(HKEY key, const wchar_t* name, std::string_view text) {
  RegistryText value;
  HRESULT hr = value.assign(text);
  if (FAILED(hr)) return hr;
  return HRESULT_FROM_WIN32(
      RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.get()), value.bytes()));
}

/// What is already gone needs no removal.
HRESULT RemovalResult(LSTATUS status) { return status == ERROR_FILE_NOT_FOUND ? S_OK : HRESULT_FROM_WIN32(status); }

HRESULT DeleteTree(HKEY parent, const wchar_t* name) {
  // RegDeleteTree needs these rights of its handle, the last one as soon as there are values.
  constexpr REGSAM kRights = DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE;
  com::RegKey key;
  LSTATUS status = RegOpenKeyExW(parent, name, 0, kRights, key.receive());
  if (status == ERROR_SUCCESS) status = RegDeleteTreeW(key.get(), nullptr);
  key.reset();
  return RemovalResult(status == ERROR_SUCCESS ? RegDeleteKeyW(parent, name) : status);
}

HRESULT WriteKeys(HKEY parent, const Key* keys);

HRESULT WriteContent(HKEY key, const Key& content) {
  HRESULT hr = content.hasDefault ? SetText(key, nullptr, content.defaultText) : S_OK;
  for (const Value* value = content.values.get(); SUCCEEDED(hr) && value; value = value->next.get()) {
    RegistryText name;
    hr = name.assign(value->name);
    if (SUCCEEDED(hr)) hr = SetText(key, name.get(), value->text);
  }
  return FAILED(hr) ? hr : WriteKeys(key, content.children.get());
}

HRESULT WriteKey(HKEY parent, const Key& content) {
  RegistryText name;
  HRESULT hr = name.assign(content.name);
  if (FAILED(hr)) return hr;
  if (content.rule == Rule::kForceRemove || content.rule == Rule::kDelete) hr = DeleteTree(parent, name.get());
  if (FAILED(hr) || content.rule == Rule::kDelete) return hr;
  com::RegKey key;
  hr = HRESULT_FROM_WIN32(RegCreateKeyExW(parent, name.get(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE,
                                          nullptr, key.receive(), nullptr));
  return FAILED(hr) ? hr : WriteContent(key.get(), content);
}

HRESULT WriteKeys(HKEY parent, const Key* keys) {
  HRESULT hr = S_OK;
  for (; SUCCEEDED(hr) && keys; keys = keys->next.get()) hr = WriteKey(parent, *keys);
  return hr;
}

HRESULT RemoveKeys(HKEY parent, const Key* keys);

/// Removes what WriteContent writes.
HRESULT RemoveContent(HKEY key, const Key& content) {
  HRESULT hr = content.hasDefault ? RemovalResult(RegDeleteValueW(key, nullptr)) : S_OK;
  for (const Value* value = content.values.get(); SUCCEEDED(hr) && value; value = value->next.get()) {
    RegistryText name;
    hr = name.assign(value->name);
    if (SUCCEEDED(hr)) hr = RemovalResult(RegDeleteValueW(key, name.get()));
  }
  return FAILED(hr) ? hr : RemoveKeys(key, content.children.get());
}

/// Deletes a key, opened as `key`, unless something is left in it.
HRESULT DeleteIfEmpty(HKEY parent, const wchar_t* name, com::RegKey key) {
  DWORD subkeys = 0;
  DWORD values = 0;
  LSTATUS status = RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values, nullptr,
                                    nullptr, nullptr, nullptr);
  key.reset();
  if (status == ERROR_SUCCESS && subkeys == 0 && values == 0) status = RegDeleteKeyW(parent, name);
  return RemovalResult(status);
}

/// A ForceRemove key goes with all that is in it and a NoRemove key stays. Any other loses what the script put into
/// it, and goes unless others put something there too.
HRESULT RemoveKey(HKEY parent, const Key& content) {
  RegistryText name;
  HRESULT hr = name.assign(content.name);
  if (FAILED(hr) || content.rule == Rule::kDelete) return hr;
  if (content.rule == Rule::kForceRemove) return DeleteTree(parent, name.get());
  bool stays = content.rule == Rule::kNoRemove;
  com::RegKey key;
  LSTATUS status =
      RegOpenKeyExW(parent, name.get(), 0, stays ? KEY_READ : KEY_QUERY_VALUE | KEY_SET_VALUE, key.receive());
  if (status != ERROR_SUCCESS) return RemovalResult(status);
  if (stays) return RemoveKeys(key.get(), content.children.get());
  hr = RemoveContent(key.get(), content);
  return FAILED(hr) ? hr : DeleteIfEmpty(parent, name.get(), std::move(key));
}

HRESULT RemoveKeys(HKEY parent, const Key* keys) {
  HRESULT hr = S_OK;
  for (; SUCCEEDED(hr) && keys; keys = keys->next.get()) hr = RemoveKey(parent, *keys);
  return hr;
}

/// The parsed script of a resource; its texts live in the module's image.
HRESULT LoadScript(WORD id, std::unique_ptr<Key>& keys) {
  HMODULE instance = com::module::Instance();
  HRSRC resource = FindResourceW(instance, MAKEINTRESOURCEW(id), L"REGISTRY");
  if (!resource) return HRESULT_FROM_WIN32(GetLastError());
  HGLOBAL loaded = LoadResource(instance, resource);
  if (!loaded) return HRESULT_FROM_WIN32(GetLastError());
  return Parse({static_cast<const char*>(LockResource(loaded)), SizeofResource(instance, resource)}, keys);
}

}  // namespace

HRESULT Register(WORD script) {
  std::unique_ptr<Key> keys;
  HRESULT hr = LoadScript(script, keys);
  return FAILED(hr) ? hr : WriteKeys(HKEY_CLASSES_ROOT, keys.get());
}

HRESULT Unregister(WORD script) {
  std::unique_ptr<Key> keys;
  HRESULT hr = LoadScript(script, keys);
  return FAILED(hr) ? hr : RemoveKeys(HKEY_CLASSES_ROOT, keys.get());
}

}  // namespace registrar
