#include "com/method.h"

namespace com {

Method::Method(ITypeInfo* info) : info_(info) {
  HREFTYPE half = 0;
  Ref<ITypeInfo> vtableHalf;
  if (SUCCEEDED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &half)) &&
      SUCCEEDED(info->GetRefTypeInfo(half, vtableHalf.receive())))
    info_ = vtableHalf;
}

Method::~Method() {
  if (description_) info_->ReleaseFuncDesc(description_);
}

bool Method::find(DISPID member) {
  Ref<ITypeInfo2> info2;
  UINT index = 0;
  return SUCCEEDED(info_->QueryInterface(IID_ITypeInfo2, info2.receiveVoid())) &&
         SUCCEEDED(info2->GetFuncIndexOfMemId(member, INVOKE_FUNC, &index)) &&
         SUCCEEDED(info_->GetFuncDesc(index, &description_)) && description_->invkind == INVOKE_FUNC;
}

VARTYPE Method::declared(UINT i) const {
  return typeOf(i).vt == VT_USERDEFINED ? static_cast<VARTYPE>(VT_I4) : typeOf(i).vt;
}

bool Method::isOutput(UINT i) const {
  return (description_->lprgelemdescParam[i].paramdesc.wParamFlags & (PARAMFLAG_FOUT | PARAMFLAG_FRETVAL)) != 0;
}

UINT Method::lastOutput() const {
  for (UINT i = count(); i-- > 0;)
    if (isOutput(i)) return i;
  return count();
}

VARTYPE Method::pointee(UINT i) const {
  VARTYPE type = typeOf(i).lptdesc->vt;
  return type == VT_PTR || type == VT_USERDEFINED ? static_cast<VARTYPE>(VT_DISPATCH) : type;
}

IID Method::interfaceOf(UINT i) const {
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

}  // namespace com
