// Libraries of the windows, loaded when a window is shown: a host that shows none never loads them.
#pragma once

#include <windows.h>

namespace legacy {

/// A library of the system folder, and of no other folder. It stays loaded: threads of the shell may still be at
/// work in it when the call that started them has returned.
class SystemLibrary {
 public:
  explicit SystemLibrary(const wchar_t* name) : library_(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}

  /// The exported function; null when there is none, or no library.
  template <class Function>
  Function* find(const char* name) const {
    if (!library_) return nullptr;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library_, name)));
  }

 private:
  const HMODULE library_;
};

}  // namespace legacy
