// Delivers the outputs of a late-bound call to where a script wants them.
#pragma once

#include "com/variant.h"

namespace com {

/// Stores `value` into the by-reference variable `variable` and frees what it held. The value is converted to
/// the variable's type; DISP_E_TYPEMISMATCH and the like when it cannot be.
HRESULT StoreByReference(VARIANT* variable, Variant& value);

/// Puts `value` into the property "value" of the caller's object, which is made when the object allows it.
HRESULT StoreInHolder(IDispatch* holder, const Variant& value);

}  // namespace com
