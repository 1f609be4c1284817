#include "objects/properties.h"

#include <cstring>
#include <new>

#include "com/array.h"
#include "com/variant.h"
#include "convert/bytes.h"
#include "convert/dates.h"
#include "convert/strings.h"
#include "objects/members.h"

namespace objects {

HRESULT Properties::getText(const char* member, BSTR* out) {
  if (!out) return E_POINTER;
  if (member) return convert::AnsiToBstr(member, out);
  // TRUE alone is no proof, as in ReallocBstr.
  return SysReAllocStringLen(out, nullptr, 0) && *out ? S_OK : E_OUTOFMEMORY;
}

HRESULT Properties::putText(char*& member, BSTR value) {
  int size = 0;
  HRESULT hr = convert::MeasureAnsi(value, &size);
  if (size == 0) return hr;
  Reset(member);
  member = new (std::nothrow) char[size]();
  return member ? convert::FillAnsi(value, member, size) : E_OUTOFMEMORY;
}

HRESULT Properties::getBytes(const DataBlob_t& member, VARIANT* out) {
  return out ? convert::CopyToByteArray(member, out) : E_POINTER;
}

HRESULT Properties::putBytes(DataBlob_t& member, const VARIANT& value) {
  const VARIANT* given = com::Dereference(value);
  if (!given) return E_INVALIDARG;
  if (V_VT(given) == VT_EMPTY) {
    Reset(member);
    return S_OK;
  }
  SAFEARRAY* array = nullptr;
  HRESULT hr = com::ArrayOf(*given, VT_UI1, &array);
  if (FAILED(hr)) return hr;
  if (array->cbElements == 0) return E_INVALIDARG;
  Reset(member);
  member.data = new (std::nothrow) uint8_t[com::ElementCount(array)]();
  if (!member.data) return E_OUTOFMEMORY;
  member.len = com::ElementCount(array);
  com::ArrayView<const uint8_t> bytes;
  hr = bytes.lock(array);
  if (FAILED(hr)) return hr;
  std::memcpy(member.data, bytes.data(), member.len);
  return bytes.unlock();
}

HRESULT Properties::getTexts(char* const* texts, int32_t count, VARIANT* out) {
  if (!out) return E_POINTER;
  com::Array array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(count)));
  if (!array) return E_OUTOFMEMORY;
  for (LONG i = 0; i < count; ++i) {
    com::Bstr text;
    HRESULT hr = getText(texts[i], text.inOut());
    if (SUCCEEDED(hr)) hr = SafeArrayPutElement(array.get(), &i, text.get());
    if (FAILED(hr)) return hr;
  }
  return com::SetArray(out, VT_BSTR, std::move(array));
}

HRESULT Properties::putTexts(char**& texts, int32_t& count, const VARIANT& value) {
  const VARIANT* given = com::Dereference(value);
  if (!given) return E_INVALIDARG;
  if (V_VT(given) == VT_EMPTY) {
    Reset(texts, count);
    return S_OK;
  }
  SAFEARRAY* array = nullptr;
  HRESULT hr = com::ArrayOf(*given, VT_BSTR, &array);
  if (FAILED(hr)) return hr;
  if (!com::Holds(array, VT_BSTR, sizeof(BSTR))) return E_INVALIDARG;
  Reset(texts, count);
  ULONG size = com::ElementCount(array);
  texts = new (std::nothrow) char*[size]();
  if (!texts) return E_OUTOFMEMORY;
  count = static_cast<int32_t>(size);
  com::ArrayView<const BSTR> elements;
  hr = elements.lock(array);
  for (ULONG i = 0; SUCCEEDED(hr) && i < size; ++i) hr = putText(texts[i], elements[i]);
  return FAILED(hr) ? hr : elements.unlock();
}

HRESULT Properties::getTime(uint32_t member, DATE* out) {
  return out ? convert::UnixTimeToDate(member, out) : E_POINTER;
}

HRESULT Properties::putTime(uint32_t& member, DATE value) {
  int64_t seconds = 0;
  HRESULT hr = convert::DateToUnixTime(value, &seconds);
  if (SUCCEEDED(hr)) member = static_cast<uint32_t>(seconds);
  return hr;
}

HRESULT Properties::putStartTime(uint32_t& start, uint32_t& end, DATE value) {
  int64_t seconds = 0;
  HRESULT hr = convert::DateToUnixTime(value, &seconds);
  if (FAILED(hr)) return hr;
  start = static_cast<uint32_t>(seconds);
  end = static_cast<uint32_t>(seconds >> 32);
  return S_OK;
}

}  // namespace objects
