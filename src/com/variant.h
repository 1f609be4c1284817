// Owner of one VARIANT, and the reading of the VARIANTs that callers pass.
#pragma once

#include "com/owner.h"

namespace com {

class Variant {
 public:
  Variant() = default;
  Variant(Variant&& other) noexcept : value_(other.release()) {}
  Variant& operator=(const Variant&) = delete;
  ~Variant() { clear(); }

  const VARIANT& get() const { return value_; }
  VARTYPE type() const { return V_VT(&value_); }
  VARIANT* inOut() { return &value_; }
  VARIANT* receive() {
    clear();
    return &value_;
  }
  /// Gives the value up to the caller, who clears it.
  [[nodiscard]] VARIANT release() { return std::exchange(value_, VARIANT{}); }
  void reset(BSTR text) {
    clear();
    V_VT(&value_) = VT_BSTR;
    V_BSTR(&value_) = text;
  }
  void reset(IDispatch* object) {
    clear();
    V_VT(&value_) = VT_DISPATCH;
    V_DISPATCH(&value_) = object;
  }

 private:
  // Most are empty when they end: a late-bound call has several for each argument.
  void clear() {
    if (type() != VT_EMPTY) VariantClear(&value_);
  }

  VARIANT value_{};
};

/// The VARIANT that a VT_BYREF|VT_VARIANT points to (one level only), else `value` itself; null when the
/// reference is null.
inline const VARIANT* Dereference(const VARIANT& value) {
  return V_VT(&value) == (VT_BYREF | VT_VARIANT) ? V_VARIANTREF(&value) : &value;
}

/// True if `value` refers to nothing, itself or through the VARIANT that it points to: the platform's conversions read
/// through both references.
inline bool IsNullReference(const VARIANT& value) {
  const VARIANT* target = Dereference(value);
  return !target || (V_ISBYREF(&value) && !V_BYREF(&value)) || (V_ISBYREF(target) && !V_BYREF(target));
}

/// The array of a VARIANT whose type is VT_ARRAY|`element`, by value or by reference. E_INVALIDARG for any
/// other type, a null reference or a null array.
HRESULT ArrayOf(const VARIANT& value, VARTYPE element, SAFEARRAY** array);

/// Clears `out` and hands it `array` as VT_ARRAY|`element`. Returns the result of VariantClear.
HRESULT SetArray(VARIANT* out, VARTYPE element, Array array);

/// Sets `out` to VT_BSTR without clearing it: on purpose, "Text outputs overwrite" in docs/behaviour.md.
inline void OverwriteWithText(VARIANT* out, Bstr text) {
  V_VT(out) = VT_BSTR;
  V_BSTR(out) = text.release();
}

}  // namespace com
