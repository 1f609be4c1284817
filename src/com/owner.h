// One owner for every kind of handle: it closes what it holds, is moved and never copied.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <utility>

namespace com {

/// Owns a `Handle`; `Close` gives it back. A value-initialised handle stands for "none".
template <class Handle, class Close>
class Owner {
 public:
  Owner() = default;
  explicit Owner(Handle handle) : handle_(handle) {}
  Owner(Owner&& other) noexcept : handle_(other.release()) {}
  Owner& operator=(Owner&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~Owner() { reset(); }

  Handle get() const { return handle_; }
  explicit operator bool() const { return handle_ != Handle{}; }

  /// Closes what is held and returns the address for a function that hands out a handle.
  Handle* receive() {
    reset();
    return &handle_;
  }
  /// The address of what is held, for a function that replaces it in place.
  Handle* inOut() { return &handle_; }
  /// Gives the handle up to the caller.
  [[nodiscard]] Handle release() { return std::exchange(handle_, Handle{}); }
  void reset(Handle handle = Handle{}) {
    Handle old = std::exchange(handle_, handle);
    if (old != Handle{}) Close{}(old);
  }

 private:
  Handle handle_{};
};

struct FreeBstr {
  void operator()(BSTR text) const { SysFreeString(text); }
};
struct CloseRegKey {
  void operator()(HKEY key) const { RegCloseKey(key); }
};
struct CloseFile {
  void operator()(HANDLE file) const { CloseHandle(file); }
};
struct DestroyArray {
  void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};

using Bstr = Owner<BSTR, FreeBstr>;
using RegKey = Owner<HKEY, CloseRegKey>;
using File = Owner<HANDLE, CloseFile>;
using Array = Owner<SAFEARRAY*, DestroyArray>;

}  // namespace com
