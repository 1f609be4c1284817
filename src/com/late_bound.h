// IDispatch::Invoke for every class: what scripts need beyond the platform's ITypeInfo::Invoke.
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace com {

/// Invokes a member of `object` as IDispatch::Invoke does, with its results and errors. Calls of methods
/// without outputs, and all properties, are the platform's; a method with outputs accepts each of them
///  - as a by-reference variable of any type that can take the value,
///  - left out (the last output only): its value is the result of the call,
///  - as an object of the caller's, whose property "value" receives the value (for hosts without variables
///    by reference).
/// A failing method gives DISP_E_EXCEPTION with its HRESULT in `exception->scode`.
HRESULT InvokeLateBound(ITypeInfo* info, IDispatch* object, DISPID member, WORD flags, DISPPARAMS* params,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument);

}  // namespace com
