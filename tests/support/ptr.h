// Owner of one COM reference, for the tests.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <utility>

template <class Interface>
class Ptr {
 public:
  Ptr() = default;
  Ptr(const Ptr& other) : pointer_(other.pointer_) {
    if (pointer_ != nullptr) pointer_->AddRef();
  }
  Ptr(Ptr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  Ptr& operator=(Ptr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~Ptr() { reset(); }

  /// Takes over a reference that the caller owns.
  static Ptr adopt(Interface* pointer) {
    Ptr owner;
    owner.pointer_ = pointer;
    return owner;
  }
  static Ptr share(Interface* pointer) {
    if (pointer != nullptr) pointer->AddRef();
    return adopt(pointer);
  }

  Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  operator Interface*() const { return pointer_; }

  Interface** out() {
    reset();
    return &pointer_;
  }
  /// The address as it is, for a test that wants to see whether a method leaves it alone.
  Interface** inOut() { return &pointer_; }
  void** voidOut() { return reinterpret_cast<void**>(out()); }
  void reset() {
    if (Interface* old = std::exchange(pointer_, nullptr)) old->Release();
  }

  /// Another interface of the object; null when it has none.
  template <class Other>
  Ptr<Other> as() const {
    Ptr<Other> other;
    if (pointer_ != nullptr) pointer_->QueryInterface(__uuidof(Other), other.voidOut());
    return other;
  }
  /// The reference count, as Release returns it.
  ULONG references() const {
    pointer_->AddRef();
    return pointer_->Release();
  }

 private:
  Interface* pointer_ = nullptr;
};
