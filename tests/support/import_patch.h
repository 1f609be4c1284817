// Functions that the module under test imports, replaced while a test looks at what it asks of the platform.
#pragma once

#include <windows.h>

#include <algorithm>
#include <functional>
#include <utility>

#include "support/module.h"

/// Replaces a function that a module imports, for as long as it lives.
class ImportPatch {
 public:
  ImportPatch(HMODULE module, const char* function, void* replacement);
  ImportPatch(const ImportPatch&) = delete;
  ImportPatch& operator=(const ImportPatch&) = delete;
  ~ImportPatch();

 private:
  void** slot_;
  void* original_;
};

/// The name of a function as a template argument.
template <size_t size>
struct FunctionName {
  char text[size];
  constexpr FunctionName(const char (&name)[size]) { std::copy_n(name, size, text); }
};

/// As ImportPatch, for the module under test and with a lambda that captures; at most one for each function.
///
///     ImportHook<"CreateFileW", decltype(CreateFileW)> hook([&](LPCWSTR path, auto... rest) { ... });
template <FunctionName name, class Function>
class ImportHook;

template <FunctionName name, class Result, class... Arguments>
class ImportHook<name, Result(Arguments...)> {
 public:
  explicit ImportHook(std::function<Result(Arguments...)> body)
      : patch_(Module::get().handle(), name.text, reinterpret_cast<void*>(&call)) {
    sharedBody = std::move(body);
  }

 private:
  static Result call(Arguments... arguments) { return sharedBody(arguments...); }

  static inline std::function<Result(Arguments...)> sharedBody;
  ImportPatch patch_;
};
