// Calls through IDispatch, as script hosts make them.
#pragma once

#include <windows.h>

#include <dispex.h>
#include <oaidl.h>

#include <string>
#include <utility>
#include <vector>

#include "support/values.h"

/// One late-bound call. The arguments stay the caller's.
struct LateCall {
  std::wstring member;
  WORD kind = DISPATCH_METHOD;
  /// In the order in which a script writes them.
  std::vector<VARIANT> positional;
  std::vector<std::pair<std::wstring, VARIANT>> named;
  /// Whether the caller wants a result.
  bool wantsResult = false;
};

struct LateResult {
  /// What Invoke returned; for an exception, its code.
  HRESULT result = E_UNEXPECTED;
  /// What Invoke returned itself.
  HRESULT raw = E_UNEXPECTED;
  UINT badArgument = 0xFFFF;
  Variant value;
};

LateResult Invoke(IDispatch* object, const LateCall& call);
/// The same call by the platform's ITypeInfo::Invoke over the object's type information: the yardstick for the module's
/// own.
LateResult InvokeByPlatform(IDispatch* object, const LateCall& call);

LateResult GetProperty(IDispatch* object, const wchar_t* name);
LateResult PutProperty(IDispatch* object, const wchar_t* name, const VARIANT& value);
LateResult PutRefProperty(IDispatch* object, const wchar_t* name, const VARIANT& value);

/// VT_BYREF|VT_BSTR, VT_BYREF|VT_DISPATCH: typed variables of a caller that has types.
Variant ByRefText(Bstr& variable);
Variant ByRefObject(Ptr<IDispatch>& variable);

/// An object with a property `value`: one that has it from the start, or one that gets it through IDispatchEx.
class Holder final : public IDispatchEx {
 public:
  enum class Kind { kHasValue, kExtendable, kNeither };
  explicit Holder(Kind kind) : kind_(kind) {}
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;

  const Variant& value() const { return value_; }
  bool wasSet() const { return set_; }
  ULONG references() const { return references_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override { return --references_; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO*,
                      UINT*) override;
  STDMETHODIMP GetDispID(BSTR name, DWORD flags, DISPID* id) override;
  STDMETHODIMP InvokeEx(DISPID id, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* info,
                        IServiceProvider*) override {
    return Invoke(id, IID_NULL, locale, flags, arguments, result, info, nullptr);
  }
  STDMETHODIMP DeleteMemberByName(BSTR, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP DeleteMemberByDispID(DISPID) override { return E_NOTIMPL; }
  STDMETHODIMP GetMemberProperties(DISPID, DWORD, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP GetMemberName(DISPID, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetNextDispID(DWORD, DISPID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetNameSpaceParent(IUnknown**) override { return E_NOTIMPL; }

 private:
  static constexpr DISPID kValue = 7;

  Kind kind_;
  bool known_ = false;
  bool set_ = false;
  Variant value_;
  ULONG references_ = 1;
};
