#include "module/registrar_script.h"

#include <algorithm>

#include <new>

namespace registrar {
namespace {

const HRESULT kBadScript = HRESULT_FROM_WIN32(ERROR_INVALID_DATA);
// Registry paths are never this deep; a script that is would only exhaust the stack.
constexpr int kMaxDepth = 16;

struct Token {
  std::string_view text;
  bool isQuoted = false;

  bool is(std::string_view word) const { return !isQuoted && text == word; }
  bool isEnd() const { return !isQuoted && text.empty(); }
  bool isMark() const { return is("{") || is("}") || is("="); }
  bool isName() const { return !isEnd() && !isMark(); }
};

class Parser {
 public:
  explicit Parser(std::string_view script) : rest_(script) { advance(); }

  HRESULT parse(std::unique_ptr<Key>& keys) {
    if (!take("HKCR") || !take("{")) return kBadScript;
    std::unique_ptr<Value> none;
    HRESULT hr = body(keys, none, 0);
    if (FAILED(hr)) return hr;
    return none || !token_.isEnd() || isBroken_ ? kBadScript : S_OK;
  }

 private:
  /// Keys and values up to and including the closing brace.
  HRESULT body(std::unique_ptr<Key>& keys, std::unique_ptr<Value>& values, int depth) {
    if (depth > kMaxDepth) return kBadScript;
    std::unique_ptr<Key>* lastKey = &keys;
    std::unique_ptr<Value>* lastValue = &values;
    while (!take("}")) {
      HRESULT hr = S_OK;
      if (take("val")) {
        hr = value(*lastValue);
        if (*lastValue) lastValue = &(*lastValue)->next;
      } else {
        hr = key(*lastKey, depth);
        if (*lastKey) lastKey = &(*lastKey)->next;
      }
      if (FAILED(hr)) return hr;
    }
    return S_OK;
  }

  HRESULT value(std::unique_ptr<Value>& out) {
    auto parsed = std::unique_ptr<Value>(new (std::nothrow) Value);
    if (!parsed) return E_OUTOFMEMORY;
    if (!name(parsed->name) || !take("=") || !string(parsed->text)) return kBadScript;
    out = std::move(parsed);
    return S_OK;
  }

  HRESULT key(std::unique_ptr<Key>& out, int depth) {
    auto parsed = std::unique_ptr<Key>(new (std::nothrow) Key);
    if (!parsed) return E_OUTOFMEMORY;
    if (take("ForceRemove"))
      parsed->rule = Rule::kForceRemove;
    else if (take("NoRemove"))
      parsed->rule = Rule::kNoRemove;
    else if (take("Delete"))
      parsed->rule = Rule::kDelete;
    if (!name(parsed->name)) return kBadScript;
    parsed->hasDefault = take("=");
    if (parsed->hasDefault && !string(parsed->defaultText)) return kBadScript;
    if (take("{")) {
      HRESULT hr = body(parsed->children, parsed->values, depth + 1);
      if (FAILED(hr)) return hr;
    }
    out = std::move(parsed);
    return S_OK;
  }

  bool name(std::string_view& out) {
    if (!token_.isName() || token_.text.empty() || isBroken_) return false;
    out = token_.text;
    advance();
    return true;
  }

  bool string(std::string_view& out) {
    if (!take("s") || !token_.isQuoted || isBroken_) return false;
    out = token_.text;
    advance();
    return true;
  }

  bool take(std::string_view word) {
    if (!token_.is(word)) return false;
    advance();
    return true;
  }

  void advance() {
    constexpr std::string_view kBlanks = " \t\r\n";
    size_t start = rest_.find_first_not_of(kBlanks);
    rest_.remove_prefix(start == std::string_view::npos ? rest_.size() : start);
    token_ = {};
    if (rest_.empty()) return;
    if (rest_.front() == '\'') return quoted();
    size_t length = rest_.find_first_of(" \t\r\n'=");
    // Not substr, which refers to the machinery of exceptions.
    token_.text = {rest_.data(), rest_.front() == '=' ? 1 : std::min(length, rest_.size())};
    rest_.remove_prefix(token_.text.size());
  }

  void quoted() {
    size_t end = rest_.find('\'', 1);
    isBroken_ = end == std::string_view::npos;
    token_ = {isBroken_ ? std::string_view() : std::string_view(rest_.data() + 1, end - 1), !isBroken_};
    rest_.remove_prefix(isBroken_ ? rest_.size() : end + 1);
  }

  std::string_view rest_;
  Token token_;
  bool isBroken_ = false;
};

}  // namespace

HRESULT Parse(std::string_view script, std::unique_ptr<Key>& keys) { return Parser(script).parse(keys); }

}  // namespace registrar
