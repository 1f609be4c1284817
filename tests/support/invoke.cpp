#include "support/invoke.h"

#include <oleauto.h>

#include <cwchar>
#include <functional>

namespace {

LateResult Finish(HRESULT raw, EXCEPINFO& exception) {
  LateResult outcome;
  outcome.raw = outcome.result = raw;
  if (raw == DISP_E_EXCEPTION) {
    if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
    outcome.result = exception.scode;
  }
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return outcome;
}

}  // namespace

namespace {

using Invoker = std::function<HRESULT(DISPID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*)>;

LateResult InvokeWith(const Invoker& invoker, IDispatch* object, const LateCall& call) {
  std::vector<LPOLESTR> names{const_cast<LPOLESTR>(call.member.c_str())};
  for (const auto& [name, value] : call.named) names.push_back(const_cast<LPOLESTR>(name.c_str()));
  std::vector<DISPID> ids(names.size());
  LateResult unknown;
  unknown.raw = unknown.result =
      object->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()), LOCALE_USER_DEFAULT, ids.data());
  if (FAILED(unknown.raw)) return unknown;

  // Named arguments come first, then the others from the last to the first.
  std::vector<VARIANT> arguments;
  for (const auto& [name, value] : call.named) arguments.push_back(value);
  arguments.insert(arguments.end(), call.positional.rbegin(), call.positional.rend());
  DISPPARAMS parameters{arguments.data(), ids.data() + 1, static_cast<UINT>(arguments.size()),
                        static_cast<UINT>(call.named.size())};
  DISPID putId = DISPID_PROPERTYPUT;
  if (call.kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
    parameters.rgdispidNamedArgs = &putId;
    parameters.cNamedArgs = 1;
  }
  Variant value;
  EXCEPINFO exception{};
  UINT badArgument = 0xFFFF;
  const HRESULT raw =
      invoker(ids[0], call.kind, &parameters, call.wantsResult ? value.out() : nullptr, &exception, &badArgument);
  LateResult outcome = Finish(raw, exception);
  outcome.badArgument = badArgument;
  outcome.value = std::move(value);
  return outcome;
}

}  // namespace

LateResult Invoke(IDispatch* object, const LateCall& call) {
  return InvokeWith(
      [&](DISPID id, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
        return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, parameters, result, exception, badArgument);
      },
      object, call);
}

LateResult InvokeByPlatform(IDispatch* object, const LateCall& call) {
  Ptr<ITypeInfo> info;
  object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.out());
  // The platform calls through the virtual table of the described interface.
  TYPEATTR* attributes = nullptr;
  info->GetTypeAttr(&attributes);
  Ptr<IDispatch> typed;
  object->QueryInterface(attributes->guid, typed.voidOut());
  info->ReleaseTypeAttr(attributes);
  return InvokeWith(
      [&](DISPID id, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
        return info->Invoke(typed.get(), id, flags, parameters, result, exception, badArgument);
      },
      object, call);
}

LateResult GetProperty(IDispatch* object, const wchar_t* name) {
  return Invoke(object, {name, DISPATCH_PROPERTYGET, {}, {}, true});
}

LateResult PutProperty(IDispatch* object, const wchar_t* name, const VARIANT& value) {
  return Invoke(object, {name, DISPATCH_PROPERTYPUT, {value}, {}, false});
}

LateResult PutRefProperty(IDispatch* object, const wchar_t* name, const VARIANT& value) {
  return Invoke(object, {name, DISPATCH_PROPERTYPUTREF, {value}, {}, false});
}

Variant ByRefText(Bstr& variable) {
  Variant made;
  V_VT(made.out()) = VT_BYREF | VT_BSTR;
  V_BSTRREF(made.out()) = variable.inOut();
  return made;
}

Variant ByRefObject(Ptr<IDispatch>& variable) {
  Variant made;
  V_VT(made.out()) = VT_BYREF | VT_DISPATCH;
  V_DISPATCHREF(made.out()) = variable.inOut();
  return made;
}

STDMETHODIMP Holder::QueryInterface(REFIID iid, void** object) {
  const bool extended = iid == __uuidof(IDispatchEx) && kind_ == Kind::kExtendable;
  const bool known = extended || iid == IID_IUnknown || iid == IID_IDispatch;
  *object = known ? this : nullptr;
  if (known) AddRef();
  return known ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP Holder::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  const bool value = count == 1 && std::wcscmp(names[0], L"value") == 0;
  const bool found = value && (kind_ == Kind::kHasValue || known_);
  ids[0] = found ? kValue : DISPID_UNKNOWN;
  return found ? S_OK : DISP_E_UNKNOWNNAME;
}

STDMETHODIMP Holder::GetDispID(BSTR name, DWORD flags, DISPID* id) {
  if (name == nullptr) return E_INVALIDARG;
  if (std::wcscmp(name, L"value") == 0 && (flags & fdexNameEnsure) != 0) known_ = true;
  *id = known_ ? kValue : DISPID_UNKNOWN;
  return known_ ? S_OK : DISP_E_UNKNOWNNAME;
}

STDMETHODIMP Holder::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*, UINT*) {
  const WORD puts = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
  if (id != kValue || (flags & puts) == 0 || arguments->cArgs != 1) return DISP_E_MEMBERNOTFOUND;
  if (arguments->cNamedArgs != 1 || arguments->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT) return DISP_E_PARAMNOTFOUND;
  set_ = true;
  return VariantCopyInd(value_.out(), &arguments->rgvarg[0]);
}
