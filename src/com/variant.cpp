#include "com/variant.h"

#include "com/array.h"

namespace com {

HRESULT ArrayOf(const VARIANT& value, VARTYPE element, SAFEARRAY** array) {
  if (V_VT(&value) == (VT_ARRAY | element)) {
    *array = V_ARRAY(&value);
  } else if (V_VT(&value) == (VT_BYREF | VT_ARRAY | element)) {
    *array = V_ARRAYREF(&value) ? *V_ARRAYREF(&value) : nullptr;
  } else {
    return E_INVALIDARG;
  }
  return *array ? S_OK : E_INVALIDARG;
}

HRESULT SetArray(VARIANT* out, VARTYPE element, Array array) {
  HRESULT hr = VariantClear(out);
  V_VT(out) = static_cast<VARTYPE>(VT_ARRAY | element);
  V_ARRAY(out) = array.release();
  return hr;
}

ULONG ElementCount(const SAFEARRAY* array) {
  if (!array || array->cDims == 0) return 0;
  for (USHORT i = 0; i < array->cDims; ++i)
    if (array->rgsabound[i].cElements == 0) return 0;
  return array->rgsabound[0].cElements;
}

bool Holds(SAFEARRAY* array, VARTYPE element, ULONG size) {
  VARTYPE held = VT_EMPTY;
  return array->cbElements == size && (FAILED(SafeArrayGetVartype(array, &held)) || held == element);
}

}  // namespace com
