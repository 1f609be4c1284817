// Property bodies over the members of the engine's records: one line for each property, get and put.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include "engine/records.h"

namespace objects {

/// What the classes with properties inherit. A setter converts at assignment, so that an operation hands the record
/// over as it stands. A null out-pointer is E_POINTER.
struct Properties {
 protected:
  /// A text: a missing one reads as empty. A text that cannot be measured (a null BSTR) keeps the old one.
  static HRESULT getText(const char* member, BSTR* out);
  static HRESULT putText(char*& member, BSTR value);

  /// A byte array: none reads as VT_EMPTY; VT_EMPTY clears. Any other type but an array of bytes, also by reference, is
  /// E_INVALIDARG and keeps the old bytes.
  static HRESULT getBytes(const DataBlob_t& member, VARIANT* out);
  static HRESULT putBytes(DataBlob_t& member, const VARIANT& value);

  /// A list of texts: reads as VT_ARRAY|VT_BSTR, empty for none; VT_EMPTY clears. Any other type but an array of
  /// strings, also by reference, is E_INVALIDARG and keeps the old texts.
  static HRESULT getTexts(char* const* texts, int32_t count, VARIANT* out);
  static HRESULT putTexts(char**& texts, int32_t& count, const VARIANT& value);

  /// Times, 32-bit UTC seconds. E_INVALIDARG out of range.
  static HRESULT getTime(uint32_t member, DATE* out);
  static HRESULT putTime(uint32_t& member, DATE value);
  /// The start of a period: stored as 64 bits over both members, so that the end becomes the upper half. On
  /// purpose: "The start of a period clears its end" in docs/behaviour.md.
  static HRESULT putStartTime(uint32_t& start, uint32_t& end, DATE value);

  /// A 32-bit value, as given, without a check.
  template <class Member, class Value>
  static HRESULT getNumber(const Member& member, Value* out) {
    static_assert(sizeof(Member) == 4 && sizeof(Value) == 4);
    if (!out) return E_POINTER;
    *out = static_cast<Value>(member);
    return S_OK;
  }
  template <class Member, class Value>
  static HRESULT putNumber(Member& member, Value value) {
    static_assert(sizeof(Member) == 4 && sizeof(Value) == 4);
    member = static_cast<Member>(value);
    return S_OK;
  }
};

}  // namespace objects
