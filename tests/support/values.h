// BSTRs and VARIANTs for tests: owners, makers that name the form of an input, readers that check the form of an
// output.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "support/ptr.h"

using Bytes = std::vector<uint8_t>;

class Bstr {
 public:
  Bstr() = default;
  Bstr(const wchar_t* text) : text_(SysAllocString(text)) {}
  Bstr(const std::wstring& text) : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  Bstr(Bstr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  Bstr& operator=(Bstr&& other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  ~Bstr() { SysFreeString(text_); }

  operator BSTR() const { return text_; }
  /// The address of the string that is held, which a getter replaces in place.
  BSTR* inOut() { return &text_; }
  std::wstring text() const { return text_ == nullptr ? std::wstring() : std::wstring(text_, SysStringLen(text_)); }
  bool null() const { return text_ == nullptr; }

 private:
  BSTR text_ = nullptr;
};

class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  Variant& operator=(Variant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~Variant() { VariantClear(&value_); }

  static Variant number(LONG value);
  static Variant text(const wchar_t* value);
  static Variant object(IDispatch* object);
  static Variant null();
  /// Takes the array over.
  static Variant array(VARTYPE element, SAFEARRAY* array);

  /// As an argument by value: what it holds stays this owner's.
  operator VARIANT() const { return value_; }
  VARIANT* out() { return &value_; }
  VARTYPE type() const { return V_VT(&value_); }
  const VARIANT& get() const { return value_; }
  SAFEARRAY* safeArray() const { return V_ARRAY(&value_); }

 private:
  VARIANT value_;
};

/// A variable that cannot be cleared: it holds an array that somebody has locked. What replaced the array by the end is
/// freed too.
class LockedVariant {
 public:
  LockedVariant();
  LockedVariant(const LockedVariant&) = delete;
  LockedVariant& operator=(const LockedVariant&) = delete;
  ~LockedVariant();

  VARIANT value;

 private:
  Variant array_;
};

constexpr VARTYPE kByteArray = VT_ARRAY | VT_UI1;
constexpr VARTYPE kVbsArray = VT_ARRAY | VT_VARIANT;
constexpr VARTYPE kObjectArray = VT_ARRAY | VT_DISPATCH;
constexpr VARTYPE kStringArray = VT_ARRAY | VT_BSTR;

// Inputs.
Variant ByteArray(const Bytes& content, LONG lowerBound = 0);
/// An array of VARIANTs, each VT_UI1.
Variant VbsByteArray(const Bytes& content, LONG lowerBound = 0);
/// An array of VARIANTs as given.
Variant VariantArray(std::initializer_list<VARIANT> elements, LONG lowerBound = 0);
Variant ObjectArray(std::initializer_list<IDispatch*> elements, LONG lowerBound = 0);
Variant StringArray(std::initializer_list<const wchar_t*> elements, LONG lowerBound = 0);
/// VT_BYREF|VT_VARIANT to `value`, which has to live on.
Variant ByRef(Variant& value);
/// VT_BYREF|VT_ARRAY|... to the array of `value`.
Variant ByRefArray(Variant& value);
/// A by-reference VARIANT of a type, with a null pointer.
Variant NullRef(VARTYPE type);
/// An array with `elements` in each of its dimensions, all zero.
Variant ManyDimensions(VARTYPE element, std::initializer_list<SAFEARRAYBOUND> bounds);

// Outputs. A wrong form is a failure of the test and gives no elements.
Bytes PlainBytesOf(const Variant& value);
Bytes VbsBytesOf(const Variant& value);
std::vector<std::wstring> StringsOf(const Variant& value);
std::vector<Ptr<IDispatch>> ObjectsOf(const Variant& value);
/// A text in the ANSI code page, as the engine gives it; and back.
std::string AnsiOf(const std::wstring& text);
std::wstring WideOf(const std::string& text);
/// The text of a VT_BSTR up to its first NUL.
std::wstring TextOf(const Variant& value);

template <class Interface>
std::vector<Ptr<Interface>> ObjectsOf(const Variant& value) {
  std::vector<Ptr<Interface>> typed;
  for (const auto& object : ObjectsOf(value)) typed.push_back(object.template as<Interface>());
  return typed;
}
