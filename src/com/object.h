// What COM asks of a class, written once: identity, counting, aggregation, IDispatch and the module lock.
//
// A class derives from Object<ItsInterface, ...> and implements the interface's own methods; the factory
// makes it as Plain<Class> or, with an outer object, as Aggregated<Class>.
#pragma once

#include <atomic>
#include <new>

#include "com/interface_info.h"
#include "com/late_bound.h"

namespace com {

/// Base of every class; `Primary` is its default, dispatchable interface.
template <class PrimaryInterface, class... More>
class Object : public PrimaryInterface, public More... {
 public:
  using Primary = PrimaryInterface;

  Object() { module::Lock(); }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  // NOLINTBEGIN(readability-identifier-naming): the methods of IDispatch, which the base hides from the check.
  STDMETHODIMP GetTypeInfoCount(UINT* count) final {
    if (!count) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) final {
    if (!info) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    const InterfaceInfo* known = nullptr;
    HRESULT hr = InfoOf<Primary>(&known);
    return FAILED(hr) ? hr : Ref<ITypeInfo>(known->typeInfo()).copyTo(info);
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) final {
    const InterfaceInfo* known = nullptr;
    HRESULT hr = InfoOf<Primary>(&known);
    return FAILED(hr) ? hr : known->idsOfNames(names, count, ids);
  }
  STDMETHODIMP Invoke(DISPID member, REFIID iid, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                      EXCEPINFO* exception, UINT* badArgument) final {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    const InterfaceInfo* known = nullptr;
    HRESULT hr = InfoOf<Primary>(&known);
    if (FAILED(hr)) return hr;
    // A call may show a window, and the host may let go of the object meanwhile.
    Ref<Primary> self(this);
    return InvokeLateBound(*known, static_cast<Primary*>(this), member, flags, params, result, exception, badArgument);
  }
  // NOLINTEND(readability-identifier-naming)

 protected:
  ~Object() { module::Unlock(); }

  /// The interfaces of the class. The caller counts the reference.
  void* find(REFIID iid) {
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(Primary)) return static_cast<Primary*>(this);
    void* found = nullptr;
    ((iid == __uuidof(More) ? found = static_cast<More*>(this) : nullptr), ...);
    return found;
  }
};

/// The vtable pointer of an object: the identity of its implementing class.
inline const void* VtableOf(const IUnknown* object) { return *reinterpret_cast<const void* const*>(object); }

/// Stores what is nearly always there already: a store would stop the other processors, a look does not.
inline void Remember(std::atomic<const void*>& known, const void* vtable) {
  if (known.load(std::memory_order_relaxed) != vtable) known = vtable;
}

/// A class with its own IUnknown.
template <class Class>
class Plain final : public Class {
 public:
  // Written out: the empty parentheses of a pack would clear the whole object before its members are.
  Plain() { remember(); }
  template <class Argument>
  explicit Plain(Argument argument) : Class(argument) {
    remember();
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    *out = this->find(iid);
    if (!*out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  /// Gives the reference of the maker up to the caller, as `iid`; without such an interface the object ends.
  HRESULT handOver(REFIID iid, void** out) {
    *out = this->find(iid);
    if (*out) return S_OK;
    delete this;
    return E_NOINTERFACE;
  }

  static inline std::atomic<const void*> vtable;

 private:
  void remember() { Remember(vtable, VtableOf(static_cast<typename Class::Primary*>(this))); }

  std::atomic<ULONG> references_ = 1;
};

/// A class inside an outer object: its interfaces delegate their IUnknown, `unknown()` is its own.
template <class Class>
class Aggregated final : public Class {
 public:
  explicit Aggregated(IUnknown* outer) : own_(*this), outer_(outer) {
    Remember(vtable, VtableOf(static_cast<typename Class::Primary*>(this)));
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override { return outer_->QueryInterface(iid, out); }
  STDMETHODIMP_(ULONG) AddRef() override { return outer_->AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return outer_->Release(); }
  /// Gives the reference of the maker up to the caller. Any other pointer than IUnknown would not hold the object.
  HRESULT handOver(void** out) {
    *out = static_cast<IUnknown*>(&own_);
    return S_OK;
  }

  static inline std::atomic<const void*> vtable;

 private:
  class OwnUnknown final : public IUnknown {
   public:
    explicit OwnUnknown(Aggregated& object) : object_(object) {}
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
      if (!out) return E_POINTER;
      *out = iid == IID_IUnknown ? static_cast<IUnknown*>(this) : object_.find(iid);
      if (!*out) return E_NOINTERFACE;
      static_cast<IUnknown*>(*out)->AddRef();
      return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
      ULONG left = --references_;
      if (left == 0) delete &object_;
      return left;
    }

   private:
    Aggregated& object_;
    std::atomic<ULONG> references_ = 1;
  };

  OwnUnknown own_;
  IUnknown* const outer_;
};

/// Makes an object of `Class` and returns the interface `iid` of it: the class factories' work.
template <class Class>
HRESULT Create(IUnknown* outer, REFIID iid, void** out) {
  if (!outer) {
    auto* object = new (std::nothrow) Plain<Class>;
    return object ? object->handOver(iid, out) : E_OUTOFMEMORY;
  }
  // Refused before anything is made.
  if (iid != IID_IUnknown) return CLASS_E_NOAGGREGATION;
  auto* object = new (std::nothrow) Aggregated<Class>(outer);
  return object ? object->handOver(out) : E_OUTOFMEMORY;
}

/// The object behind an interface pointer when it is one of this module's `Class`, else null. Nothing is
/// called through the pointer, so a foreign implementation or a proxy is recognised without being trusted.
template <class Class>
Class* Own(IUnknown* pointer) {
  if (!pointer) return nullptr;
  const void* vtable = VtableOf(pointer);
  if (vtable != Plain<Class>::vtable && vtable != Aggregated<Class>::vtable) return nullptr;
  return static_cast<Class*>(static_cast<typename Class::Primary*>(pointer));
}

}  // namespace com
