#include "com/late_bound.h"

#include <oleauto.h>

#include <cstring>
#include <memory>

#include "com/output.h"
#include "com/variant.h"

namespace com {
namespace {

// More than any member of the module takes.
constexpr UINT kMaxArguments = 8;

/// One argument on its way into the call and, for an output, back.
struct Argument {
  VARIANT* given = nullptr;  // the caller's; null if left out
  Variant converted;         // what the member receives by value
  VARIANT passed{};          // the value that is passed: the caller's own or the converted one
  Ref<IUnknown> object;      // an object input
  Variant value;             // an output on its way back; a VARIANT output is built in it
  uint64_t slot = 0;         // where any other output is built
  bool isHolder = false;
  bool isDirect = false;     // the caller's own VARIANT, or its null reference, is handed to the member
  bool isDiscarded = false;  // given by value: nothing can be handed back
};

/// One call of a member.
class Call {
 public:
  explicit Call(const Member& member) : member_(member) { std::uninitialized_value_construct_n(arguments_, count()); }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;
  ~Call() { std::destroy_n(arguments_, count()); }

  /// Assigns the caller's arguments, named and positional, to the declared parameters.
  HRESULT assign(DISPPARAMS* params, UINT* badArgument) {
    params_ = params;
    if (params->cArgs > count()) return DISP_E_BADPARAMCOUNT;
    if (isPut() && (params->cNamedArgs == 0 || params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT))
      return DISP_E_PARAMNOTFOUND;
    for (UINT i = 0; i < params->cNamedArgs; ++i) {
      DISPID position = params->rgdispidNamedArgs[i];
      if (isPut() && position == DISPID_PROPERTYPUT) position = static_cast<DISPID>(count()) - 1;
      if (position < 0 || static_cast<UINT>(position) >= count() || arguments_[position].given) {
        if (badArgument) *badArgument = i;
        return DISP_E_PARAMNOTFOUND;
      }
      arguments_[position].given = &params->rgvarg[i];
    }
    UINT lastOutput = member_.lastOutput();
    bool leavesOut = lastOutput < count() && params->cArgs == count() - 1 && !arguments_[lastOutput].given;
    if (params->cArgs != count() - (leavesOut ? 1 : 0)) return DISP_E_BADPARAMCOUNT;
    UINT next = 0;
    for (UINT i = params->cArgs; i-- > params->cNamedArgs; ++next) {
      while (arguments_[next].given || (leavesOut && next == lastOutput)) ++next;
      arguments_[next].given = &params->rgvarg[i];
    }
    return S_OK;
  }

  HRESULT convert(UINT* badArgument) {
    for (UINT i = 0; i < count(); ++i) {
      HRESULT hr = parameter(i).isOutput ? prepareOutput(i) : convertInput(i);
      if (FAILED(hr)) {
        if (badArgument && arguments_[i].given) *badArgument = static_cast<UINT>(arguments_[i].given - params_->rgvarg);
        return hr;
      }
    }
    return S_OK;
  }

  /// Calls the member through its slot in the virtual table and returns its HRESULT. By the platform's calling
  /// convention every argument takes eight bytes, a VARIANT by value is an address, and the caller clears the stack: a
  /// member does not see those above its count. A date, which only setters take, has a register of its own.
  HRESULT run(IDispatch* object) const {
    using Method = HRESULT(STDMETHODCALLTYPE*)(IDispatch*, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t,
                                               uint64_t, uint64_t);
    using DateSetter = HRESULT(STDMETHODCALLTYPE*)(IDispatch*, DATE);
    const char* table = *reinterpret_cast<const char* const*>(object);
    void* entry = *reinterpret_cast<void* const*>(table + member_.slot);
    if (member_.takesDate) return reinterpret_cast<DateSetter>(entry)(object, V_DATE(&arguments_[0].passed));
    uint64_t words[kMaxArguments] = {};
    for (UINT i = 0; i < count(); ++i) words[i] = word(i);
    return reinterpret_cast<Method>(entry)(object, words[0], words[1], words[2], words[3], words[4], words[5], words[6],
                                           words[7]);
  }

  /// Hands the outputs to the caller: all of them after a success; after a failure only what was written.
  HRESULT store(bool succeeded, VARIANT* result) {
    HRESULT first = S_OK;
    for (UINT i = 0; i < count(); ++i) {
      if (!parameter(i).isOutput || arguments_[i].isDirect || arguments_[i].isDiscarded) continue;
      bool written = collect(i);
      // A host does not look at the result of a call that failed.
      if (!succeeded && (!written || !arguments_[i].given)) continue;
      HRESULT hr = deliver(arguments_[i], result);
      if (FAILED(hr) && SUCCEEDED(first)) first = hr;
    }
    return first;
  }

 private:
  UINT count() const { return member_.count; }
  const Parameter& parameter(UINT i) const { return member_.parameters[i]; }
  uint64_t word(UINT i) const {
    const Argument& argument = arguments_[i];
    const bool isWhole = !parameter(i).isOutput && parameter(i).type == VT_VARIANT;
    return reinterpret_cast<uint64_t>(isWhole ? argument.given : V_BYREF(&argument.passed));
  }
  bool isPut() const { return (member_.kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0; }

  HRESULT convertInput(UINT i) {
    Argument& argument = arguments_[i];
    VARTYPE declared = parameter(i).type;
    if (declared == VT_VARIANT) return S_OK;
    // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): only an output can have been left out.
    VARIANT* source = const_cast<VARIANT*>(Dereference(*argument.given));
    if (!source || IsNullReference(*source)) return E_INVALIDARG;
    if (declared == VT_DISPATCH) return convertObject(i, *source);
    // A value of the declared type is passed as it is: a conversion would make an empty string of a null one.
    if (source == argument.given && V_VT(source) == declared) {
      argument.passed = *source;
      return S_OK;
    }
    HRESULT hr = VariantChangeType(argument.converted.inOut(), source, 0, declared);
    argument.passed = argument.converted.get();
    return hr;
  }

  HRESULT convertObject(UINT i, VARIANT& source) {
    Argument& argument = arguments_[i];
    VARTYPE type = V_VT(&source) & ~VT_BYREF;
    IUnknown* object = nullptr;
    if (type == VT_DISPATCH || type == VT_UNKNOWN) {
      object = V_ISBYREF(&source) ? *V_UNKNOWNREF(&source) : V_UNKNOWN(&source);
    } else {
      HRESULT hr = VariantChangeType(argument.converted.inOut(), &source, 0, VT_DISPATCH);
      if (FAILED(hr)) return hr;
      object = V_UNKNOWN(&argument.converted.get());
    }
    if (object) {
      HRESULT hr = argument.object.query(object, parameter(i).iid);
      if (FAILED(hr)) return hr;
    }
    V_VT(&argument.passed) = VT_UNKNOWN;
    V_UNKNOWN(&argument.passed) = argument.object.get();
    return S_OK;
  }

  HRESULT prepareOutput(UINT i) {
    Argument& argument = arguments_[i];
    VARIANT* given = argument.given;
    bool wantsVariant = parameter(i).type == VT_VARIANT;
    V_VT(&argument.passed) = VT_BYREF | VT_VARIANT;
    V_BYREF(&argument.passed) = wantsVariant ? static_cast<void*>(argument.value.inOut()) : &argument.slot;
    if (!given) return S_OK;
    if (V_ISBYREF(given)) {
      // A null reference is the member's to refuse.
      argument.isDirect = !V_BYREF(given) || (wantsVariant && V_VT(given) == (VT_BYREF | VT_VARIANT));
      if (argument.isDirect) V_BYREF(&argument.passed) = V_BYREF(given);
      return S_OK;
    }
    argument.isHolder = V_VT(given) == VT_DISPATCH && V_DISPATCH(given);
    if (argument.isHolder) return S_OK;
    argument.isDiscarded = wantsVariant;
    return wantsVariant ? S_OK : DISP_E_TYPEMISMATCH;
  }

  /// Moves what the member wrote into `value`; false if it wrote nothing.
  bool collect(UINT i) {
    Argument& argument = arguments_[i];
    if (parameter(i).type == VT_VARIANT) return argument.value.type() != VT_EMPTY;
    bool written = argument.slot != 0;
    VARIANT* value = argument.value.receive();
    V_VT(value) = parameter(i).type;
    std::memcpy(&V_BYREF(value), &argument.slot, sizeof(argument.slot));
    return written;
  }

  static HRESULT deliver(Argument& argument, VARIANT* result) {
    if (argument.isHolder) return StoreInHolder(V_DISPATCH(argument.given), argument.value);
    if (argument.given) return StoreByReference(argument.given, argument.value);
    if (result) *result = argument.value.release();
    return S_OK;
  }

  const Member& member_;
  // As many as the member has parameters are made: most have one or two.
  union {
    Argument arguments_[kMaxArguments];
  };
  DISPPARAMS* params_ = nullptr;
};

HRESULT Raise(HRESULT failure, EXCEPINFO* exception) {
  if (exception) {
    *exception = {};
    exception->scode = failure;
  }
  return DISP_E_EXCEPTION;
}

HRESULT CallMember(const Member& member, IDispatch* object, DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                   UINT* badArgument) {
  Call call(member);
  HRESULT hr = call.assign(params, badArgument);
  if (SUCCEEDED(hr)) hr = call.convert(badArgument);
  if (FAILED(hr)) return hr;
  HRESULT outcome = call.run(object);
  hr = call.store(SUCCEEDED(outcome), result);
  return FAILED(outcome) ? Raise(outcome, exception) : hr;
}

/// A property that is read with arguments: they are those of the object that it returns.
HRESULT ReadWithArguments(const Member& member, IDispatch* object, DISPPARAMS* params, VARIANT* result,
                          EXCEPINFO* exception, UINT* badArgument) {
  if (!result) return DISP_E_BADPARAMCOUNT;
  DISPPARAMS none{};
  Variant value;
  HRESULT hr = CallMember(member, object, &none, value.inOut(), exception, nullptr);
  if (FAILED(hr)) return hr;
  if (value.type() != VT_DISPATCH || !V_DISPATCH(&value.get())) return DISP_E_NOTACOLLECTION;
  return V_DISPATCH(&value.get())
      ->Invoke(DISPID_VALUE, IID_NULL, GetSystemDefaultLCID(), DISPATCH_PROPERTYGET, params, result, exception,
               badArgument);
}

}  // namespace

HRESULT InvokeLateBound(const InterfaceInfo& info, IDispatch* object, DISPID id, WORD flags, DISPPARAMS* params,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
  if (!params || (params->cArgs > 0 && !params->rgvarg) || (params->cNamedArgs > 0 && !params->rgdispidNamedArgs))
    return E_INVALIDARG;
  if (params->cNamedArgs > params->cArgs) return DISP_E_BADPARAMCOUNT;
  const Member* member = info.find(id, flags);
  if (!member || member->count > kMaxArguments) return DISP_E_MEMBERNOTFOUND;
  if (result) VariantInit(result);
  auto* call = member->kind == DISPATCH_PROPERTYGET && params->cArgs > 0 ? ReadWithArguments : CallMember;
  return call(*member, object, params, result, exception, badArgument);
}

}  // namespace com
