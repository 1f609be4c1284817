// IDispatch::Invoke for every class. The platform's ITypeInfo::Invoke is the model, and is not called: it drops the
// results of failing methods, refuses some outputs of scripts and does not survive every shape of call.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "com/interface_info.h"

namespace com {

/// Invokes a member of `object` as IDispatch::Invoke does, with its results and errors. A method with outputs accepts
/// each of them
///  - as a by-reference variable of any type that can take the value,
///  - left out (the last output only): its value is the result of the call,
///  - as an object of the caller's, whose property "value" receives the value (for hosts without variables by
///    reference).
/// A failing member gives DISP_E_EXCEPTION with its HRESULT in `exception->scode`.
HRESULT InvokeLateBound(const InterfaceInfo& info, IDispatch* object, DISPID id, WORD flags, DISPPARAMS* params,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument);

}  // namespace com
