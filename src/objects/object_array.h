// An array property of objects of this module, and the array of records that the engine reads.
#pragma once

#include <memory>
#include <new>

#include "com/array.h"
#include "com/object.h"
#include "com/ref.h"
#include "com/variant.h"

namespace objects {

/// Holds the objects and copies of their records; `Class` has a Record type and a record().
template <class Class>
class ObjectArray {
 public:
  using Record = typename Class::Record;

  /// Copies the records of the objects again, so that a later change of an object is seen and leaves no pointer to what
  /// it has freed; then names their array and its length.
  void refresh(Record*& records, int32_t& count) {
    for (int32_t i = 0; i < count_; ++i)
      if (Class* object = com::Own<Class>(objects_[i].get())) records_[i] = *object->record();
    records = records_.get();
    count = count_;
  }

  /// Assigns VT_EMPTY (clears) or an array of objects, also by reference. Another type, or an object that is
  /// not a `Class` of this module, is E_INVALIDARG and changes nothing; after another failure the former objects
  /// are gone.
  HRESULT put(const VARIANT& value) { return assign(value, false); }

  /// As put; accepts a script's array of VARIANTs too, whose objects read back as null references, on
  /// purpose: "Receivers that read back as null" in docs/behaviour.md. The objects are referenced all the same while
  /// the engine may read their records. Such an array that cannot be locked changes nothing.
  HRESULT putAlsoVariants(const VARIANT& value) { return assign(value, true); }

  /// Returns VT_ARRAY|VT_DISPATCH, empty for none.
  HRESULT get(VARIANT* out) const {
    if (!out) return E_POINTER;
    com::Array array(SafeArrayCreateVector(VT_DISPATCH, 0, static_cast<ULONG>(count_)));
    if (!array) return E_OUTOFMEMORY;
    for (LONG i = 0; isShown_ && i < count_; ++i) {
      HRESULT hr = SafeArrayPutElement(array.get(), &i, objects_[i].get());
      if (FAILED(hr)) return hr;
    }
    return com::SetArray(out, VT_DISPATCH, std::move(array));
  }

 private:
  HRESULT assign(const VARIANT& value, bool alsoVariants) {
    const VARIANT* given = com::Dereference(value);
    if (!given) return E_INVALIDARG;
    if (V_VT(given) == VT_EMPTY) {
      clear();
      return S_OK;
    }
    SAFEARRAY* array = nullptr;
    if (SUCCEEDED(com::ArrayOf(*given, VT_DISPATCH, &array))) return fill<IDispatch*>(array, VT_DISPATCH, true);
    HRESULT hr = alsoVariants ? com::ArrayOf(*given, VT_VARIANT, &array) : E_INVALIDARG;
    return FAILED(hr) ? hr : fill<VARIANT>(array, VT_VARIANT, false);
  }

  template <class Element>
  HRESULT fill(SAFEARRAY* array, VARTYPE type, bool isShown) {
    if (!com::Holds(array, type, sizeof(Element))) return E_INVALIDARG;
    com::ArrayView<const Element> elements;
    HRESULT locked = elements.lock(array);
    // On purpose: "Locked before or after" in docs/behaviour.md.
    if (FAILED(locked) && !isShown) return locked;
    for (ULONG i = 0; i < elements.size(); ++i)
      if (!isAccepted(elements[i])) return E_INVALIDARG;
    HRESULT hr = makeRoom(com::ElementCount(array), isShown);
    if (SUCCEEDED(hr)) hr = locked;
    if (FAILED(hr)) return hr;
    for (ULONG i = 0; i < elements.size(); ++i) objects_[i] = com::Ref<IDispatch>(objectOf(elements[i]));
    return elements.unlock();
  }

  static bool isAccepted(IDispatch* element) { return !element || com::Own<Class>(element); }
  static bool isAccepted(const VARIANT& element) {
    return V_VT(&element) == VT_DISPATCH && isAccepted(V_DISPATCH(&element));
  }
  static IDispatch* objectOf(IDispatch* element) { return element; }
  static IDispatch* objectOf(const VARIANT& element) { return V_DISPATCH(&element); }

  void clear() {
    count_ = 0;
    objects_.reset();
    records_.reset();
    isShown_ = true;
  }

  /// Drops the former contents and holds `count` null references with empty records; nothing after a failure.
  HRESULT makeRoom(ULONG count, bool isShown) {
    clear();
    objects_.reset(new (std::nothrow) com::Ref<IDispatch>[count]);
    records_.reset(new (std::nothrow) Record[count]());
    if (!objects_ || !records_) return E_OUTOFMEMORY;
    count_ = static_cast<int32_t>(count);
    isShown_ = isShown;
    return S_OK;
  }

  std::unique_ptr<com::Ref<IDispatch>[]> objects_;
  std::unique_ptr<Record[]> records_;
  int32_t count_ = 0;
  bool isShown_ = true;
};

}  // namespace objects
