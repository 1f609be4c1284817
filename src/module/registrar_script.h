// Registration scripts: the text is parsed to a tree of keys before anything is written.
#pragma once

#include <windows.h>

#include <memory>
#include <string_view>

namespace registrar {

/// How a script wants a key to be treated.
enum class Rule { kNone, kForceRemove, kNoRemove, kDelete };

/// A named string value of a key.
struct Value {
  std::string_view name;
  std::string_view text;
  std::unique_ptr<Value> next;
};

/// One key; the texts are views of the script's.
struct Key {
  Rule rule = Rule::kNone;
  std::string_view name;
  bool hasDefault = false;
  std::string_view defaultText;
  std::unique_ptr<Value> values;
  std::unique_ptr<Key> children;
  std::unique_ptr<Key> next;
};

/// Parses the keys that a script puts under HKCR; `keys` is the first of them.
/// HRESULT_FROM_WIN32(ERROR_INVALID_DATA) when the script cannot be parsed, E_OUTOFMEMORY.
HRESULT Parse(std::string_view script, std::unique_ptr<Key>& keys);

}  // namespace registrar
