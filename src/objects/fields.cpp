#include "objects/fields.h"

#include <cstring>
#include <new>

#include "com/array.h"
#include "com/variant.h"
#include "convert/bytes.h"
#include "convert/dates.h"
#include "convert/strings.h"
#include "engine/layout.h"

void Reset(char*& field) {
  delete[] field;
  field = nullptr;
}

void Reset(DataBlob_t& field) {
  delete[] field.data;
  field = {};
}

void Reset(char**& strings, int32_t& count) {
  for (int32_t i = 0; i < count; ++i) delete[] strings[i];
  delete[] strings;
  strings = nullptr;
  count = 0;
}

HRESULT GetString(const char* field, BSTR* out) {
  if (!out) return E_POINTER;
  if (field) return AnsiToBstr(field, out);
  // TRUE alone is no proof, as in ReallocBstr.
  return SysReAllocStringLen(out, nullptr, 0) && *out ? S_OK : E_OUTOFMEMORY;
}

HRESULT PutString(char*& field, BSTR value) {
  int size = 0;
  HRESULT hr = MeasureAnsi(value, &size);
  if (size == 0) return hr;
  Reset(field);
  field = new (std::nothrow) char[size]();
  return field ? FillAnsi(value, field, size) : E_OUTOFMEMORY;
}

HRESULT GetBytes(const DataBlob_t& field, VARIANT* out) { return out ? CopyToByteArray(field, out) : E_POINTER; }

HRESULT PutBytes(DataBlob_t& field, const VARIANT& value) {
  const VARIANT* given = com::Dereference(value);
  if (!given) return E_INVALIDARG;
  if (V_VT(given) == VT_EMPTY) {
    Reset(field);
    return S_OK;
  }
  SAFEARRAY* array = nullptr;
  HRESULT hr = com::ArrayOf(*given, VT_UI1, &array);
  if (FAILED(hr)) return hr;
  if (array->cbElements == 0) return E_INVALIDARG;
  Reset(field);
  field.data = new (std::nothrow) uint8_t[com::ElementCount(array)]();
  if (!field.data) return E_OUTOFMEMORY;
  field.len = com::ElementCount(array);
  com::ArrayView<const uint8_t> bytes;
  hr = bytes.lock(array);
  if (FAILED(hr)) return hr;
  std::memcpy(field.data, bytes.data(), field.len);
  return bytes.unlock();
}

HRESULT GetStrings(char* const* strings, int32_t count, VARIANT* out) {
  if (!out) return E_POINTER;
  com::Array array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(count)));
  if (!array) return E_OUTOFMEMORY;
  for (LONG i = 0; i < count; ++i) {
    com::Bstr text;
    HRESULT hr = GetString(strings[i], text.inOut());
    if (SUCCEEDED(hr)) hr = SafeArrayPutElement(array.get(), &i, text.get());
    if (FAILED(hr)) return hr;
  }
  return com::SetArray(out, VT_BSTR, std::move(array));
}

HRESULT PutStrings(char**& strings, int32_t& count, const VARIANT& value) {
  const VARIANT* given = com::Dereference(value);
  if (!given) return E_INVALIDARG;
  if (V_VT(given) == VT_EMPTY) {
    Reset(strings, count);
    return S_OK;
  }
  SAFEARRAY* array = nullptr;
  HRESULT hr = com::ArrayOf(*given, VT_BSTR, &array);
  if (FAILED(hr)) return hr;
  if (!com::Holds(array, VT_BSTR, sizeof(BSTR))) return E_INVALIDARG;
  Reset(strings, count);
  ULONG size = com::ElementCount(array);
  strings = new (std::nothrow) char*[size]();
  if (!strings) return E_OUTOFMEMORY;
  count = static_cast<int32_t>(size);
  com::ArrayView<const BSTR> elements;
  hr = elements.lock(array);
  for (ULONG i = 0; SUCCEEDED(hr) && i < size; ++i) hr = PutString(strings[i], elements[i]);
  return FAILED(hr) ? hr : elements.unlock();
}

HRESULT GetTime(uint32_t field, DATE* out) { return out ? UnixTimeToDate(field, out) : E_POINTER; }

HRESULT PutTime(uint32_t& field, DATE value) {
  int64_t seconds = 0;
  HRESULT hr = DateToUnixTime(value, &seconds);
  if (SUCCEEDED(hr)) field = static_cast<uint32_t>(seconds);
  return hr;
}

HRESULT PutStartTime(uint32_t& start, uint32_t& end, DATE value) {
  int64_t seconds = 0;
  HRESULT hr = DateToUnixTime(value, &seconds);
  if (FAILED(hr)) return hr;
  start = static_cast<uint32_t>(seconds);
  end = static_cast<uint32_t>(seconds >> 32);
  return S_OK;
}

HRESULT Duplicate(const char* from, char*& to) {
  Reset(to);
  if (!from) return S_OK;
  size_t size = std::strlen(from) + 1;
  to = new (std::nothrow) char[size];
  if (!to) return E_OUTOFMEMORY;
  std::memcpy(to, from, size);
  return S_OK;
}

HRESULT Duplicate(const DataBlob_t& from, DataBlob_t& to) {
  Reset(to);
  if (from.len == 0) return S_OK;
  to.data = new (std::nothrow) uint8_t[from.len];
  if (!to.data) return E_OUTOFMEMORY;
  std::memcpy(to.data, from.data, from.len);
  to.len = from.len;
  return S_OK;
}

HRESULT Duplicate(char* const* from, int32_t fromCount, char**& to, int32_t& count) {
  Reset(to, count);
  if (fromCount <= 0) return S_OK;
  to = new (std::nothrow) char*[fromCount]();
  if (!to) return E_OUTOFMEMORY;
  count = fromCount;
  for (int32_t i = 0; i < fromCount; ++i) {
    HRESULT hr = Duplicate(from[i], to[i]);
    if (FAILED(hr)) return hr;
  }
  return S_OK;
}
