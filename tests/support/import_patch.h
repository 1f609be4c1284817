// Takes the place of a function of the platform, as one module sees it.
#pragma once

#include <windows.h>

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
