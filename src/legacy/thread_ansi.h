// Strings of the legacy object's callers, in the code page of the calling thread.
#pragma once

#include "convert/strings.h"

namespace legacy {

/// One argument, converted for the engine; freed with this object. A null BSTR counts as an empty string, as
/// everywhere in automation.
class ThreadAnsi {
 public:
  explicit ThreadAnsi(const wchar_t* text);

  /// False without memory, and when the platform cannot convert.
  explicit operator bool() const { return text_ != nullptr; }
  const char* get() const { return text_.get(); }
  /// The text, to be cut up in place.
  char* inPlace() { return text_.get(); }

 private:
  convert::AnsiString text_;
};

}  // namespace legacy
