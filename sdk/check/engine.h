// The engine that is checked: a library that is loaded by its path, and its functions by their names.
#pragma once

#include <string>
#include <vector>

#include "engine/functions.h"
#include "engine_functions.h"

namespace check {

/// How the library exports a function: "exported", "forwarded to X", or what is wrong.
struct Export {
  std::string name;
  std::string state;
  bool isCallable;
};

class Engine {
 public:
#define TAVL_POINTER(name) decltype(&::name) name = nullptr;
  TAVL_ENGINE_FUNCTIONS(TAVL_POINTER)
#undef TAVL_POINTER

  /// Loads the library as the module does; what is wrong, or nothing. In the place of a function that is not there
  /// stands one that supports nothing.
  std::string load(const std::wstring& path);
  const std::vector<Export>& exports() const { return exports_; }

 private:
  std::vector<Export> exports_;
};

}  // namespace check
