#include "convert/bytes.h"

#include <cstring>
#include <new>

#include "com/variant.h"

namespace convert {

HRESULT ByteInput::viewBytes(SAFEARRAY* array) {
  if (array->cbElements == 0) return E_INVALIDARG;
  HRESULT hr = view_.lock(array);
  if (SUCCEEDED(hr)) blob_ = {view_.size(), view_.data()};
  return hr;
}

HRESULT ByteInput::copyVariants(SAFEARRAY* array) {
  if (!com::Holds(array, VT_VARIANT, sizeof(VARIANT))) return E_INVALIDARG;
  com::ArrayView<const VARIANT> elements;
  HRESULT hr = elements.lock(array);
  if (FAILED(hr)) return hr;
  ULONG count = elements.size();
  std::unique_ptr<uint8_t[]> copy(new (std::nothrow) uint8_t[count]);
  if (!copy) return E_OUTOFMEMORY;
  // One look at all types in the end costs less than one at each. The loop waits for memory: what it reads next is
  // fetched ahead.
  VARTYPE otherTypes = 0;
#pragma GCC unroll 8
  for (ULONG i = 0; i < count; ++i) {
    // Beyond the end that does nothing.
    __builtin_prefetch(elements.data() + i + 64);
    otherTypes |= V_VT(&elements[i]) ^ VT_UI1;
    copy[i] = V_UI1(&elements[i]);
  }
  if (otherTypes != 0) return E_INVALIDARG;
  blob_ = {count, copy.get()};
  copy_ = std::move(copy);
  isVbsForm_ = true;
  return elements.unlock();
}

HRESULT ReadByteVariant(const VARIANT& in, ByteInput& out) {
  const VARIANT* value = com::Dereference(in);
  if (!value) return E_INVALIDARG;
  if (V_VT(value) == VT_EMPTY) return S_OK;
  out.isGiven_ = true;
  SAFEARRAY* array = nullptr;
  if (SUCCEEDED(com::ArrayOf(*value, VT_UI1, &array))) return out.viewBytes(array);
  HRESULT hr = com::ArrayOf(*value, VT_VARIANT, &array);
  return FAILED(hr) ? hr : out.copyVariants(array);
}

namespace {

void Fill(const DataBlob_t& bytes, uint8_t* to) { std::memcpy(to, bytes.data, bytes.len); }

void Fill(const DataBlob_t& bytes, VARIANT* to) {
  for (uint32_t i = 0; i < bytes.len; ++i) {
    V_VT(&to[i]) = VT_UI1;
    V_UI1(&to[i]) = bytes.data[i];
  }
}

/// A new array with lower bound 0 that holds `bytes`; E_OUTOFMEMORY, or the failure of its lock.
template <class Element>
HRESULT NewArray(const DataBlob_t& bytes, VARTYPE type, com::Array& array) {
  array.reset(SafeArrayCreateVector(type, 0, bytes.len));
  if (!array) return E_OUTOFMEMORY;
  com::ArrayView<Element> view;
  HRESULT hr = view.lock(array.get());
  if (FAILED(hr)) return hr;
  Fill(bytes, view.data());
  return view.unlock();
}

}  // namespace

HRESULT WriteByteVariant(engine::Buffer& bytes, bool vbsForm, VARIANT* out) {
  if (bytes.get().len == 0 || !bytes.get().data) {
    // The engine hands out no buffer for zero bytes.
    bytes.leave();
    return VariantClear(out);
  }
  com::Array array;
  VARTYPE element = vbsForm ? VT_VARIANT : VT_UI1;
  HRESULT hr =
      vbsForm ? NewArray<VARIANT>(bytes.get(), element, array) : NewArray<uint8_t>(bytes.get(), element, array);
  bytes.giveBack();
  return FAILED(hr) ? hr : com::SetArray(out, element, std::move(array));
}

HRESULT CopyToByteArray(const DataBlob_t& bytes, VARIANT* out) {
  if (bytes.len == 0 || !bytes.data) return VariantClear(out);
  com::Array array;
  HRESULT hr = NewArray<uint8_t>(bytes, VT_UI1, array);
  return FAILED(hr) ? hr : com::SetArray(out, VT_UI1, std::move(array));
}

}  // namespace convert
