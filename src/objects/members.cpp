#include "objects/members.h"

#include <cstring>
#include <new>

namespace objects {

void Reset(char*& text) {
  delete[] text;
  text = nullptr;
}

void Reset(DataBlob_t& bytes) {
  delete[] bytes.data;
  bytes = {};
}

void Reset(char**& texts, int32_t& count) {
  for (int32_t i = 0; i < count; ++i) delete[] texts[i];
  delete[] texts;
  texts = nullptr;
  count = 0;
}

HRESULT Copy(const char* from, char*& to) {
  Reset(to);
  if (!from) return S_OK;
  size_t size = std::strlen(from) + 1;
  to = new (std::nothrow) char[size];
  if (!to) return E_OUTOFMEMORY;
  std::memcpy(to, from, size);
  return S_OK;
}

HRESULT Copy(const DataBlob_t& from, DataBlob_t& to) {
  Reset(to);
  if (from.len == 0 || !from.data) return S_OK;
  to.data = new (std::nothrow) uint8_t[from.len];
  if (!to.data) return E_OUTOFMEMORY;
  std::memcpy(to.data, from.data, from.len);
  to.len = from.len;
  return S_OK;
}

HRESULT Copy(char* const* from, int32_t fromCount, char**& to, int32_t& count) {
  Reset(to, count);
  if (!from || fromCount <= 0) return S_OK;
  to = new (std::nothrow) char*[fromCount]();
  if (!to) return E_OUTOFMEMORY;
  count = fromCount;
  for (int32_t i = 0; i < fromCount; ++i) {
    HRESULT hr = Copy(from[i], to[i]);
    if (FAILED(hr)) return hr;
  }
  return S_OK;
}

}  // namespace objects
