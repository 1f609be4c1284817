// Registration scripts: parsed or refused, with every text inside the script.
#include "attack/fuzz/input.h"
#include "module/registrar_script.h"

namespace {

void RequireInside(std::string_view script, std::string_view text) {
  if (text.empty()) return;
  fuzz::Require(text.data() >= script.data() && text.data() + text.size() <= script.data() + script.size());
}

void Walk(std::string_view script, const registrar::Key* key) {
  for (; key != nullptr; key = key->next.get()) {
    RequireInside(script, key->name);
    RequireInside(script, key->defaultText);
    for (const registrar::Value* value = key->values.get(); value != nullptr; value = value->next.get()) {
      RequireInside(script, value->name);
      RequireInside(script, value->text);
    }
    Walk(script, key->children.get());
  }
}

}  // namespace

void fuzz::Run(Input bytes) {
  const std::string script = TextOf(bytes);
  std::unique_ptr<registrar::Key> keys;
  const HRESULT hr = registrar::Parse(script, keys);
  Require(hr == S_OK || hr == HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
  Walk(script, keys.get());
}
