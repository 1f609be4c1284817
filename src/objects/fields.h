// Property bodies over the fields of the engine's records: one line a property, get and put.
//
// A setter converts at assignment, so an operation hands the record over as it stands. Fields are allocated
// with array-new; the object that holds the record owns them and frees them with Reset.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include "engine/records.h"

/// Frees a field and leaves it empty.
void Reset(char*& field);
void Reset(DataBlob_t& field);
void Reset(char**& strings, int32_t& count);

/// A string: a missing one reads as empty. A string that cannot be measured (a null BSTR) keeps the old one.
HRESULT GetString(const char* field, BSTR* out);
HRESULT PutString(char*& field, BSTR value);

/// A byte array: none reads as VT_EMPTY; VT_EMPTY clears. Any other type but an array of bytes, also by
/// reference, is E_INVALIDARG and keeps the old bytes.
HRESULT GetBytes(const DataBlob_t& field, VARIANT* out);
HRESULT PutBytes(DataBlob_t& field, const VARIANT& value);

/// An array of strings: reads as VT_ARRAY|VT_BSTR, empty for none; VT_EMPTY clears. Any other type but an
/// array of strings, also by reference, is E_INVALIDARG and keeps the old strings.
HRESULT GetStrings(char* const* strings, int32_t count, VARIANT* out);
HRESULT PutStrings(char**& strings, int32_t& count, const VARIANT& value);

/// Times, 32-bit UTC seconds. E_INVALIDARG out of range.
HRESULT GetTime(uint32_t field, DATE* out);
HRESULT PutTime(uint32_t& field, DATE value);
/// The start of a period: stored as 64 bits over both fields, so that the end becomes the upper half. Kept on
/// purpose: scripts set the start of a period before its end.
HRESULT PutStartTime(uint32_t& start, uint32_t& end, DATE value);

/// A 32-bit value, as given, without a check.
template <class Field, class Value>
HRESULT GetValue(const Field& field, Value* out) {
  static_assert(sizeof(Field) == 4 && sizeof(Value) == 4);
  if (!out) return E_POINTER;
  *out = static_cast<Value>(field);
  return S_OK;
}
template <class Field, class Value>
HRESULT PutValue(Field& field, Value value) {
  static_assert(sizeof(Field) == 4 && sizeof(Value) == 4);
  field = static_cast<Field>(value);
  return S_OK;
}

/// Copies of what an engine record points to, for the record of an object. A missing string stays missing.
/// E_OUTOFMEMORY leaves the target empty.
HRESULT Duplicate(const char* from, char*& to);
HRESULT Duplicate(const DataBlob_t& from, DataBlob_t& to);
HRESULT Duplicate(char* const* from, int32_t fromCount, char**& to, int32_t& count);
