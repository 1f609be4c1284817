#include "com/output.h"

#include <dispex.h>

#include <cstring>

#include "com/ref.h"

namespace com {
namespace {

/// Bytes of a variable of `type`.
size_t SizeOf(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    default:
      return 8;
  }
}

bool OwnsWhatItHolds(VARTYPE type) {
  return (type & VT_ARRAY) != 0 || type == VT_BSTR || type == VT_DISPATCH || type == VT_UNKNOWN;
}

}  // namespace

HRESULT StoreByReference(VARIANT* variable, Variant& value) {
  VARTYPE type = V_VT(variable) & ~VT_BYREF;
  void* target = V_BYREF(variable);
  if (!target) return E_POINTER;
  if (type == VT_VARIANT) {
    VARIANT* out = static_cast<VARIANT*>(target);
    VariantClear(out);
    *out = value.release();
    return S_OK;
  }
  // Larger than a VARIANT's value: no output of the module has this type.
  if (type == VT_DECIMAL || type == VT_RECORD) return DISP_E_TYPEMISMATCH;
  if (value.type() != type) {
    if (type & VT_ARRAY) return DISP_E_TYPEMISMATCH;
    HRESULT hr = VariantChangeType(value.inOut(), value.inOut(), 0, type);
    if (FAILED(hr)) return hr;
  }
  if (OwnsWhatItHolds(type)) {
    VARIANT old{};
    V_VT(&old) = type;
    std::memcpy(&V_BYREF(&old), target, sizeof(void*));
    VariantClear(&old);
  }
  VARIANT stored = value.release();
  std::memcpy(target, &V_BYREF(&stored), SizeOf(type));
  return S_OK;
}

HRESULT StoreInHolder(IDispatch* holder, const Variant& value) {
  static wchar_t name[] = L"value";
  LPOLESTR names[] = {name};
  DISPID id = DISPID_UNKNOWN;
  HRESULT hr = holder->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(hr)) {
    Ref<IDispatchEx> expandable;
    if (FAILED(expandable.query(holder, __uuidof(IDispatchEx)))) return hr;
    Bstr ensured(SysAllocString(name));
    if (!ensured) return E_OUTOFMEMORY;
    hr = expandable->GetDispID(ensured.get(), fdexNameEnsure | fdexNameCaseSensitive, &id);
    if (FAILED(hr)) return hr;
  }
  VARIANT argument = value.get();
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS params{&argument, &put, 1, 1};
  return holder->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &params, nullptr, nullptr, nullptr);
}

}  // namespace com
