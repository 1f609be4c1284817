#include "com/late_bound.h"

#include <dispex.h>
#include <oleauto.h>

#include <cstring>
#include <memory>
#include <new>

#include "com/ref.h"
#include "com/variant.h"

namespace com {
namespace {

// More than any method of the module takes; a longer one is left to the platform.
constexpr UINT kMaxArguments = 8;

/// The description of one method, taken from the vtable half of a dual interface: there every output is a
/// parameter and has its slot.
class Function {
 public:
  explicit Function(ITypeInfo* info) : info_(info) {
    HREFTYPE half = 0;
    Ref<ITypeInfo> vtableHalf;
    if (SUCCEEDED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &half)) &&
        SUCCEEDED(info->GetRefTypeInfo(half, vtableHalf.receive())))
      info_ = vtableHalf;
  }
  Function(const Function&) = delete;
  Function& operator=(const Function&) = delete;
  ~Function() {
    if (description_) info_->ReleaseFuncDesc(description_);
  }

  /// True when `member` is a method.
  bool find(DISPID member) {
    Ref<ITypeInfo2> info2;
    UINT index = 0;
    return SUCCEEDED(info_->QueryInterface(IID_ITypeInfo2, info2.receiveVoid())) &&
           SUCCEEDED(info2->GetFuncIndexOfMemId(member, INVOKE_FUNC, &index)) &&
           SUCCEEDED(info_->GetFuncDesc(index, &description_)) && description_->invkind == INVOKE_FUNC;
  }

  UINT count() const { return static_cast<UINT>(description_->cParams); }
  VARTYPE declared(UINT i) const { return typeOf(i).vt == VT_USERDEFINED ? static_cast<VARTYPE>(VT_I4) : typeOf(i).vt; }
  bool isOutput(UINT i) const {
    return (description_->lprgelemdescParam[i].paramdesc.wParamFlags & (PARAMFLAG_FOUT | PARAMFLAG_FRETVAL)) != 0;
  }
  /// What an output points to: VT_VARIANT, VT_BSTR, or VT_DISPATCH for an interface.
  VARTYPE pointee(UINT i) const {
    VARTYPE type = typeOf(i).lptdesc->vt;
    return type == VT_PTR || type == VT_USERDEFINED ? static_cast<VARTYPE>(VT_DISPATCH) : type;
  }
  /// The interface that an object input asks for; IDispatch where the declaration names none.
  IID interfaceOf(UINT i) const {
    const TYPEDESC& type = typeOf(i);
    if (type.vt != VT_PTR || type.lptdesc->vt != VT_USERDEFINED) return IID_IDispatch;
    Ref<ITypeInfo> reference;
    TYPEATTR* attributes = nullptr;
    if (FAILED(info_->GetRefTypeInfo(type.lptdesc->hreftype, reference.receive())) ||
        FAILED(reference->GetTypeAttr(&attributes)))
      return IID_IDispatch;
    IID iid = attributes->guid;
    reference->ReleaseTypeAttr(attributes);
    return iid;
  }
  ULONG_PTR slot() const { return static_cast<ULONG_PTR>(description_->oVft); }

 private:
  const TYPEDESC& typeOf(UINT i) const { return description_->lprgelemdescParam[i].tdesc; }

  Ref<ITypeInfo> info_;
  FUNCDESC* description_ = nullptr;
};

/// One argument on its way into the call and, for an output, back.
struct Argument {
  VARIANT* given = nullptr;  // the caller's; null when left out
  Variant converted;         // what the method receives by value
  Variant value;             // where a VARIANT output is built
  void* pointer = nullptr;   // where a BSTR or interface output is built
  Ref<IUnknown> object;      // an object input
  bool isHolder = false;
  bool isDirect = false;  // the caller's own VARIANT is handed to the method
};

bool IsByReference(const VARIANT& value) { return (V_VT(&value) & VT_BYREF) != 0; }

/// Stores `value` into the caller's variable; converts it to the variable's type.
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
  if (value.type() != type && (type & VT_ARRAY)) return DISP_E_TYPEMISMATCH;
  if (value.type() != type) {
    HRESULT hr = VariantChangeType(value.inOut(), value.inOut(), 0, type);
    if (FAILED(hr)) return hr;
  }
  VARIANT old{};
  V_VT(&old) = type;
  static const VARTYPE kPointers[] = {VT_BSTR, VT_DISPATCH, VT_UNKNOWN};
  bool isPointer = (type & VT_ARRAY) != 0;
  for (VARTYPE pointer : kPointers) isPointer = isPointer || type == pointer;
  if (isPointer) {
    std::memcpy(&old.lVal, target, sizeof(void*));
    VariantClear(&old);
  }
  VARIANT stored = value.release();
  size_t size = 0;
  switch (type) {
    case VT_I1:
    case VT_UI1:
      size = 1;
      break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      size = 2;
      break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      size = 4;
      break;
    default:
      size = 8;
      break;
  }
  std::memcpy(target, &stored.lVal, size);
  return S_OK;
}

/// Puts `value` into the property "value" of the caller's object, which is made when the object allows it.
HRESULT StoreInHolder(IDispatch* holder, const Variant& value) {
  static wchar_t name[] = L"value";
  LPOLESTR names[] = {name};
  DISPID id = DISPID_UNKNOWN;
  HRESULT hr = holder->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(hr)) {
    Ref<IDispatchEx> expandable;
    if (FAILED(holder->QueryInterface(__uuidof(IDispatchEx), expandable.receiveVoid()))) return hr;
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

/// One call of a method with outputs.
class Call {
 public:
  explicit Call(const Function& function) : function_(function) {}

  /// Assigns the caller's arguments, named and positional, to the declared parameters.
  HRESULT assign(DISPPARAMS* params, UINT* badArgument) {
    UINT count = function_.count();
    if (params->cArgs > count) return DISP_E_BADPARAMCOUNT;
    for (UINT i = 0; i < params->cNamedArgs; ++i) {
      DISPID position = params->rgdispidNamedArgs[i];
      if (position < 0 || static_cast<UINT>(position) >= count || arguments_[position].given) {
        if (badArgument) *badArgument = i;
        return DISP_E_PARAMNOTFOUND;
      }
      arguments_[position].given = &params->rgvarg[i];
    }
    UINT lastOutput = count;
    for (UINT i = 0; i < count; ++i)
      if (function_.isOutput(i)) lastOutput = i;
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
    for (UINT i = 0; i < function_.count(); ++i) {
      HRESULT hr = function_.isOutput(i) ? prepareOutput(i) : convertInput(i);
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
    for (UINT i = 0; i < function_.count(); ++i) {
      values[i] = passed(i);
      types[i] = V_VT(&values[i]);
      pointers[i] = &values[i];
      // A VARIANT parameter is passed whole: the array of pointers then names the VARIANT itself.
      if (!function_.isOutput(i) && function_.declared(i) == VT_VARIANT) {
        types[i] = VT_VARIANT;
        pointers[i] = arguments_[i].given;
      }
    }
    VARIANT returned{};
    HRESULT hr =
        DispCallFunc(object, function_.slot(), CC_STDCALL, VT_ERROR, function_.count(), types, pointers, &returned);
    if (SUCCEEDED(hr)) *outcome = V_ERROR(&returned);
    return hr;
  }

  /// Hands the outputs to the caller: all of them after a success; after a failure only what was written.
  HRESULT store(bool succeeded, VARIANT* result) {
    HRESULT first = S_OK;
    for (UINT i = 0; i < function_.count(); ++i) {
      if (!function_.isOutput(i) || arguments_[i].isDirect) continue;
      bool written = collect(i);
      if (!succeeded && !written) continue;
      HRESULT hr = deliver(arguments_[i], result);
      if (FAILED(hr) && SUCCEEDED(first)) first = hr;
    }
    return first;
  }

 private:
  HRESULT convertInput(UINT i) {
    Argument& argument = arguments_[i];
    VARTYPE declared = function_.declared(i);
    if (declared == VT_VARIANT) return S_OK;
    const VARIANT* source = Dereference(*argument.given);
    if (!source) return E_INVALIDARG;
    if (declared != VT_PTR && declared != VT_DISPATCH)
      return VariantChangeType(argument.converted.inOut(), const_cast<VARIANT*>(source), 0, declared);
    if (IsByReference(*source)) {
      HRESULT hr = VariantCopyInd(argument.converted.inOut(), const_cast<VARIANT*>(source));
      if (FAILED(hr)) return hr;
      source = &argument.converted.get();
    }
    if (V_VT(source) != VT_DISPATCH && V_VT(source) != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
    IUnknown* object = V_UNKNOWN(source);
    if (!object) return S_OK;
    return FAILED(object->QueryInterface(function_.interfaceOf(i), argument.object.receiveVoid())) ? DISP_E_TYPEMISMATCH
                                                                                                   : S_OK;
  }

  HRESULT prepareOutput(UINT i) {
    Argument& argument = arguments_[i];
    VARIANT* given = argument.given;
    if (!given) return S_OK;
    bool wantsVariant = function_.pointee(i) == VT_VARIANT;
    if (wantsVariant && V_VT(given) == (VT_BYREF | VT_VARIANT)) {
      argument.isDirect = true;
      return V_VARIANTREF(given) ? S_OK : E_POINTER;
    }
    if (IsByReference(*given)) return V_BYREF(given) ? S_OK : E_POINTER;
    argument.isHolder = V_VT(given) == VT_DISPATCH && V_DISPATCH(given);
    return argument.isHolder ? S_OK : DISP_E_TYPEMISMATCH;
  }

  /// The value of parameter `i` as the call passes it.
  VARIANT passed(UINT i) {
    Argument& argument = arguments_[i];
    VARIANT value{};
    if (function_.isOutput(i)) {
      V_VT(&value) = VT_BYREF | VT_VARIANT;
      V_BYREF(&value) = function_.pointee(i) != VT_VARIANT ? static_cast<void*>(&argument.pointer)
                        : argument.isDirect                ? V_VARIANTREF(argument.given)
                                                           : argument.value.inOut();
    } else if (function_.declared(i) == VT_PTR || function_.declared(i) == VT_DISPATCH) {
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
    VARTYPE pointee = function_.pointee(i);
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

  const Function& function_;
  Argument arguments_[kMaxArguments];
  DISPPARAMS* params_ = nullptr;
};

bool HasOutputs(const Function& function) {
  for (UINT i = 0; i < function.count(); ++i)
    if (function.isOutput(i)) return true;
  return false;
}

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
  Function function(info);
  if (!(flags & DISPATCH_METHOD) || !function.find(member) || function.count() > kMaxArguments || !HasOutputs(function))
    return info->Invoke(object, member, flags, params, result, exception, badArgument);

  if (result) VariantInit(result);
  Call call(function);
  HRESULT hr = call.assign(params, badArgument);
  if (SUCCEEDED(hr)) hr = call.convert(badArgument);
  HRESULT outcome = S_OK;
  if (SUCCEEDED(hr)) hr = call.run(object, &outcome);
  if (FAILED(hr)) return hr;
  hr = call.store(SUCCEEDED(outcome), result);
  return FAILED(outcome) ? Raise(outcome, exception) : hr;
}

}  // namespace com
