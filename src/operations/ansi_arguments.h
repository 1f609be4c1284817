// The strings of one call in the system code page.
#pragma once

#include <array>

#include "convert/strings.h"
#include "errors/result.h"

namespace operations {

/// A string that has to be given.
struct Required {
  BSTR text;
};
/// A string that may be left out: a null BSTR is passed on as a null pointer.
struct Optional {
  BSTR text;
};

/// Converts all strings before the call is decided, in the order given; the failure of a later one wins.
///
///     AnsiArguments paths(Optional{data}, Required{file});
///     if (FAILED(paths.failure())) return paths.failure();
///     … paths.get<0>(), paths.get<1>() …
template <size_t count>
class AnsiArguments {
 public:
  template <class... Arguments>
  explicit AnsiArguments(Arguments... arguments) {
    static_assert(sizeof...(arguments) == count);
    size_t next = 0;
    (add(arguments, strings_[next++]), ...);
  }

  /// The converted string, valid as long as this object; null if it was left out or its conversion failed.
  template <size_t index>
  const char* get() const {
    return std::get<index>(strings_).get();
  }
  /// The mapped failure of the conversions, S_OK if all succeeded.
  HRESULT failure() const { return errors::ToModuleHResult(failure_); }

 private:
  void add(Required argument, convert::AnsiString& converted) {
    HRESULT hr = convert::BstrToAnsi(argument.text, converted);
    if (FAILED(hr)) failure_ = hr;
  }
  void add(Optional argument, convert::AnsiString& converted) {
    if (argument.text) add(Required{argument.text}, converted);
  }

  std::array<convert::AnsiString, count> strings_;
  HRESULT failure_ = S_OK;
};

template <class... Arguments>
AnsiArguments(Arguments...) -> AnsiArguments<sizeof...(Arguments)>;

}  // namespace operations
