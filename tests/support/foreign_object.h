// An object that is none of the module's, in the place of one: it notes everything that is called on it.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <string>
#include <vector>

/// Stands for any interface. Only counting may be called; a member beyond that is noted and refused.
class ForeignObject {
 public:
  ForeignObject();

  template <class Interface>
  Interface* as() {
    return reinterpret_cast<Interface*>(this);
  }
  operator IDispatch*() { return as<IDispatch>(); }
  /// The numbers of the slots that were called, those of AddRef and Release left out.
  const std::vector<int>& called() const { return called_; }
  long references() const { return references_; }

 private:
  friend struct ForeignSlots;

  // The first member: what an interface pointer points to.
  const void* const* table_;
  std::vector<int> called_;
  long references_ = 1;
};

/// A proper IDispatch whose type information, if it has one, is that of an interface of the module.
class LookAlike : public IDispatch {
 public:
  explicit LookAlike(ITypeInfo* info, HRESULT failure = E_NOTIMPL) : info_(info), failure_(failure) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override { return --references_; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }
  ULONG references() const { return references_; }
  /// What its type information was last asked for with.
  UINT index() const { return index_; }
  LCID locale() const { return locale_; }

 private:
  ITypeInfo* info_;
  HRESULT failure_;
  ULONG references_ = 1;
  UINT index_ = 99;
  LCID locale_ = 99;
};
