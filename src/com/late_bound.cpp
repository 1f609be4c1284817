#include "com/late_bound.h"

#include <oleauto.h>

#include <utility>

#include "com/method.h"
#include "com/output.h"
#include "com/ref.h"
#include "com/variant.h"

namespace com {
namespace {

// More than any method of the module takes; a longer one is left to the platform.
constexpr UINT kMaxArguments = 8;

/// One argument on its way into the call and, for an output, back.
struct Argument {
  VARIANT* given = nullptr;  // the caller's; null when left out
  Variant converted;         // what the method receives by value
  Variant value;             // where a VARIANT output is built
  void* pointer = nullptr;   // where a BSTR or interface output is built
  Ref<IUnknown> object;      // an object input
  bool isHolder = false;
  bool isDirect = false;     // the caller's own VARIANT is handed to the method
  bool isDiscarded = false;  // given by value: nothing can be handed back
};

/// One call of a method with outputs.
class Call {
 public:
  explicit Call(const Method& method) : method_(method) {}

  /// Assigns the caller's arguments, named and positional, to the declared parameters.
  HRESULT assign(DISPPARAMS* params, UINT* badArgument) {
    UINT count = method_.count();
    if (params->cArgs > count) return DISP_E_BADPARAMCOUNT;
    for (UINT i = 0; i < params->cNamedArgs; ++i) {
      DISPID position = params->rgdispidNamedArgs[i];
      if (position < 0 || static_cast<UINT>(position) >= count || arguments_[position].given) {
        if (badArgument) *badArgument = i;
        return DISP_E_PARAMNOTFOUND;
      }
      arguments_[position].given = &params->rgvarg[i];
    }
    UINT lastOutput = method_.lastOutput();
    bool leavesOut = params->cArgs == count - 1 && !arguments_[lastOutput].given;
    UINT next = 0;
    for (UINT i = params->cArgs; i-- > params->cNamedArgs; ++next) {
      while (next < count && (arguments_[next].given || (leavesOut && next == lastOutput))) ++next;
      if (next == count) return DISP_E_BADPARAMCOUNT;
      arguments_[next].given = &params->rgvarg[i];
    }
    for (UINT i = 0; i < count; ++i)
      if (!arguments_[i].given && !(leavesOut && i == lastOutput)) return DISP_E_PARAMNOTOPTIONAL;
    params_ = params;
    return S_OK;
  }

  HRESULT convert(UINT* badArgument) {
    for (UINT i = 0; i < method_.count(); ++i) {
      HRESULT hr = method_.isOutput(i) ? prepareOutput(i) : convertInput(i);
      if (FAILED(hr)) {
        if (badArgument && arguments_[i].given) *badArgument = static_cast<UINT>(arguments_[i].given - params_->rgvarg);
        return hr;
      }
    }
    return S_OK;
  }

  /// Calls the method through its vtable slot; the method's HRESULT arrives in `outcome`.
  HRESULT run(IDispatch* object, HRESULT* outcome) {
    VARTYPE types[kMaxArguments];
    VARIANT values[kMaxArguments];
    VARIANT* pointers[kMaxArguments];
    for (UINT i = 0; i < method_.count(); ++i) {
      values[i] = passed(i);
      types[i] = V_VT(&values[i]);
      pointers[i] = &values[i];
      // A VARIANT parameter is passed whole: the array of pointers then names the VARIANT itself.
      if (!method_.isOutput(i) && method_.declared(i) == VT_VARIANT) {
        types[i] = VT_VARIANT;
        pointers[i] = arguments_[i].given;
      }
    }
    VARIANT returned{};
    HRESULT hr =
        DispCallFunc(object, method_.slot(), CC_STDCALL, VT_ERROR, method_.count(), types, pointers, &returned);
    if (SUCCEEDED(hr)) *outcome = V_ERROR(&returned);
    return hr;
  }

  /// Hands the outputs to the caller: all of them after a success; after a failure only what was written.
  HRESULT store(bool succeeded, VARIANT* result) {
    HRESULT first = S_OK;
    for (UINT i = 0; i < method_.count(); ++i) {
      if (!method_.isOutput(i) || arguments_[i].isDirect || arguments_[i].isDiscarded) continue;
      bool written = collect(i);
      // A host does not look at the result of a call that failed.
      if (!succeeded && (!written || !arguments_[i].given)) continue;
      HRESULT hr = deliver(arguments_[i], result);
      if (FAILED(hr) && SUCCEEDED(first)) first = hr;
    }
    return first;
  }

 private:
  HRESULT convertInput(UINT i) {
    Argument& argument = arguments_[i];
    VARTYPE declared = method_.declared(i);
    if (declared == VT_VARIANT) return S_OK;
    const VARIANT* source = Dereference(*argument.given);
    if (!source) return E_INVALIDARG;
    if (declared != VT_PTR && declared != VT_DISPATCH)
      return VariantChangeType(argument.converted.inOut(), const_cast<VARIANT*>(source), 0, declared);
    if (V_ISBYREF(source)) {
      HRESULT hr = VariantCopyInd(argument.converted.inOut(), const_cast<VARIANT*>(source));
      if (FAILED(hr)) return hr;
      source = &argument.converted.get();
    }
    if (V_VT(source) != VT_DISPATCH && V_VT(source) != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
    IUnknown* object = V_UNKNOWN(source);
    if (!object) return S_OK;
    return FAILED(object->QueryInterface(method_.interfaceOf(i), argument.object.receiveVoid())) ? DISP_E_TYPEMISMATCH
                                                                                                 : S_OK;
  }

  HRESULT prepareOutput(UINT i) {
    Argument& argument = arguments_[i];
    VARIANT* given = argument.given;
    if (!given) return S_OK;
    bool wantsVariant = method_.pointee(i) == VT_VARIANT;
    if (wantsVariant && V_VT(given) == (VT_BYREF | VT_VARIANT)) {
      argument.isDirect = true;
      return V_VARIANTREF(given) ? S_OK : E_POINTER;
    }
    if (V_ISBYREF(given)) return V_BYREF(given) ? S_OK : E_POINTER;
    argument.isHolder = V_VT(given) == VT_DISPATCH && V_DISPATCH(given);
    if (argument.isHolder) return S_OK;
    argument.isDiscarded = wantsVariant;
    return wantsVariant ? VariantCopy(argument.value.inOut(), given) : DISP_E_TYPEMISMATCH;
  }

  /// The value of parameter `i` as the call passes it.
  VARIANT passed(UINT i) {
    Argument& argument = arguments_[i];
    VARIANT value{};
    if (method_.isOutput(i)) {
      V_VT(&value) = VT_BYREF | VT_VARIANT;
      V_BYREF(&value) = method_.pointee(i) != VT_VARIANT ? static_cast<void*>(&argument.pointer)
                        : argument.isDirect              ? V_VARIANTREF(argument.given)
                                                         : argument.value.inOut();
    } else if (method_.declared(i) == VT_PTR || method_.declared(i) == VT_DISPATCH) {
      V_VT(&value) = VT_UNKNOWN;
      V_UNKNOWN(&value) = argument.object.get();
    } else {
      value = argument.converted.get();
    }
    return value;
  }

  /// Moves what the method wrote into `value`; false when it wrote nothing.
  bool collect(UINT i) {
    Argument& argument = arguments_[i];
    VARTYPE pointee = method_.pointee(i);
    if (pointee == VT_VARIANT) return argument.value.type() != VT_EMPTY;
    void* pointer = std::exchange(argument.pointer, nullptr);
    if (pointee == VT_BSTR)
      argument.value.reset(static_cast<BSTR>(pointer));
    else
      argument.value.reset(static_cast<IDispatch*>(pointer));
    return pointer != nullptr;
  }

  static HRESULT deliver(Argument& argument, VARIANT* result) {
    if (argument.isHolder) return StoreInHolder(V_DISPATCH(argument.given), argument.value);
    if (argument.given) return StoreByReference(argument.given, argument.value);
    if (result) *result = argument.value.release();
    return S_OK;
  }

  const Method& method_;
  Argument arguments_[kMaxArguments];
  DISPPARAMS* params_ = nullptr;
};

HRESULT Raise(HRESULT failure, EXCEPINFO* exception) {
  if (exception) {
    *exception = {};
    exception->scode = failure;
  }
  return DISP_E_EXCEPTION;
}

}  // namespace

HRESULT InvokeLateBound(ITypeInfo* info, IDispatch* object, DISPID member, WORD flags, DISPPARAMS* params,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
  if (!params) return E_INVALIDARG;
  Method method(info);
  if (!(flags & DISPATCH_METHOD) || !method.find(member) || method.count() > kMaxArguments ||
      method.lastOutput() == method.count())
    return info->Invoke(object, member, flags, params, result, exception, badArgument);

  if (result) VariantInit(result);
  Call call(method);
  HRESULT hr = call.assign(params, badArgument);
  if (SUCCEEDED(hr)) hr = call.convert(badArgument);
  HRESULT outcome = S_OK;
  if (SUCCEEDED(hr)) hr = call.run(object, &outcome);
  if (FAILED(hr)) return hr;
  hr = call.store(SUCCEEDED(outcome), result);
  return FAILED(outcome) ? Raise(outcome, exception) : hr;
}

}  // namespace com
