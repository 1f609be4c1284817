// A typed, locked view of a SAFEARRAY.
#pragma once

#include "com/owner.h"

namespace com {

/// The number of elements to read of a caller's array: that of the first bound record, or 0 if any dimension is empty.
/// Neither lower bounds nor the number of dimensions matter.
ULONG ElementCount(const SAFEARRAY* array);

/// True if each element has `size` bytes and the array's element type, where it is known, equals `element`.
bool Holds(SAFEARRAY* array, VARTYPE element, ULONG size);

/// Locks an array for as long as it lives.
template <class T>
class ArrayView {
 public:
  ArrayView() = default;
  ArrayView(const ArrayView&) = delete;
  ArrayView& operator=(const ArrayView&) = delete;
  ~ArrayView() { unlock(); }

  HRESULT lock(SAFEARRAY* array) {
    void* data = nullptr;
    HRESULT hr = SafeArrayAccessData(array, &data);
    if (FAILED(hr)) return hr;
    array_ = array;
    data_ = static_cast<T*>(data);
    return S_OK;
  }
  /// Unlocks early, for the result; S_OK when nothing is locked.
  HRESULT unlock() {
    SAFEARRAY* array = std::exchange(array_, nullptr);
    return array ? SafeArrayUnaccessData(array) : S_OK;
  }

  ULONG size() const { return ElementCount(array_); }
  T* data() const { return data_; }
  T& operator[](ULONG index) const { return data_[index]; }

 private:
  SAFEARRAY* array_ = nullptr;
  T* data_ = nullptr;
};

}  // namespace com
