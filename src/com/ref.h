// Owner of one COM reference.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <utility>

namespace com {

template <class Interface>
class Ref {
 public:
  Ref() = default;
  /// Shares `other`: takes a reference of its own.
  explicit Ref(Interface* other) : pointer_(other) { addRef(); }
  Ref(const Ref& other) : pointer_(other.pointer_) { addRef(); }
  Ref(Ref&& other) noexcept : pointer_(other.detach()) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~Ref() { reset(); }

  Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

  /// Releases what is held and returns the address for a function that hands out a reference.
  Interface** receive() {
    reset();
    return &pointer_;
  }
  void** receiveVoid() { return reinterpret_cast<void**>(receive()); }
  /// Takes the result of the call that `receive` was for. What comes with a failure is not a reference and is
  /// forgotten; a success without a reference becomes `none`.
  HRESULT received(HRESULT hr, HRESULT none) {
    if (FAILED(hr)) pointer_ = nullptr;
    return SUCCEEDED(hr) && !pointer_ ? none : hr;
  }
  /// Asks an object of any maker for an interface.
  HRESULT query(IUnknown* object, REFIID iid) {
    HRESULT hr = object->QueryInterface(iid, receiveVoid());
    return received(hr, E_NOINTERFACE);
  }
  /// Gives the reference up to the caller.
  [[nodiscard]] Interface* detach() { return std::exchange(pointer_, nullptr); }
  void reset() {
    if (Interface* old = std::exchange(pointer_, nullptr)) old->Release();
  }
  /// Stores a further reference, or null, for the caller. A null `out` is E_POINTER.
  HRESULT copyTo(Interface** out) const {
    if (!out) return E_POINTER;
    *out = pointer_;
    addRef();
    return S_OK;
  }

 private:
  void addRef() const {
    if (pointer_) pointer_->AddRef();
  }

  Interface* pointer_ = nullptr;
};

}  // namespace com
