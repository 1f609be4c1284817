// Owners of what COM hands out: interface pointers, texts and VARIANTs are given back at the end of their scope.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

template <class Interface>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(const ComPtr&) = delete;
  ComPtr& operator=(const ComPtr&) = delete;
  ~ComPtr() {
    if (pointer_) pointer_->Release();
  }

  /// Creates an object of `Class`, one of the classes that quivocom.h declares.
  template <class Class>
  HRESULT create() {
    return CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                            reinterpret_cast<void**>(&pointer_));
  }
  Interface** receive() { return &pointer_; }
  Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

 private:
  Interface* pointer_ = nullptr;
};

/// A text for an argument, or one that a property is read into. No text at all is a null string, which is how a file
/// that does not exist is passed.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(const std::wstring& text) : text_(SysAllocString(text.c_str())) {}
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { SysFreeString(text_); }

  BSTR get() const { return text_; }
  BSTR* receive() { return &text_; }
  std::wstring str() const { return {text_, text_ + SysStringLen(text_)}; }

 private:
  BSTR text_ = nullptr;
};

class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&value_); }

  VARIANT* receive() { return &value_; }
  /// The array of objects that a search or a verification returned; null if there is none.
  SAFEARRAY* objects() const { return V_VT(&value_) == (VT_ARRAY | VT_DISPATCH) ? V_ARRAY(&value_) : nullptr; }

 private:
  VARIANT value_;
};
