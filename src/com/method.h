// The declaration of one method, as late-bound calls need it.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "com/ref.h"

namespace com {

/// The description of one method, taken from the vtable half of a dual interface: there every output is a
/// parameter and has its slot. Parameters are counted from 0.
class Method {
 public:
  explicit Method(ITypeInfo* info);
  Method(const Method&) = delete;
  Method& operator=(const Method&) = delete;
  ~Method();

  /// True when `member` is a method; the other functions may be called then.
  bool find(DISPID member);

  UINT count() const { return static_cast<UINT>(description_->cParams); }
  /// The declared type; VT_I4 for an enumeration, VT_PTR for an interface and for any output.
  VARTYPE declared(UINT i) const;
  bool isOutput(UINT i) const;
  /// The last output, or count() when there is none.
  UINT lastOutput() const;
  /// What an output points to: VT_VARIANT, VT_BSTR, or VT_DISPATCH for an interface.
  VARTYPE pointee(UINT i) const;
  /// The interface that an object input asks for; IDispatch where the declaration names none.
  IID interfaceOf(UINT i) const;
  /// The offset in the vtable, in bytes.
  ULONG_PTR slot() const { return static_cast<ULONG_PTR>(description_->oVft); }

 private:
  const TYPEDESC& typeOf(UINT i) const { return description_->lprgelemdescParam[i].tdesc; }

  Ref<ITypeInfo> info_;
  FUNCDESC* description_ = nullptr;
};

}  // namespace com
