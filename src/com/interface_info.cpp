#include "com/interface_info.h"

#include <new>

#include "com/type_library.h"

namespace com {
namespace {

/// The description of one function; given back with its owner.
class Description {
 public:
  explicit Description(ITypeInfo* info) : info_(info) {}
  Description(const Description&) = delete;
  Description& operator=(const Description&) = delete;
  ~Description() {
    if (function_) info_->ReleaseFuncDesc(function_);
  }
  HRESULT read(UINT index) { return info_->GetFuncDesc(index, &function_); }
  const FUNCDESC* operator->() const { return function_; }

 private:
  ITypeInfo* info_;
  FUNCDESC* function_ = nullptr;
};

HRESULT ReadAttributes(ITypeInfo* info, TYPEATTR& out) {
  TYPEATTR* attributes = nullptr;
  HRESULT hr = info->GetTypeAttr(&attributes);
  if (FAILED(hr)) return hr;
  out = *attributes;
  info->ReleaseTypeAttr(attributes);
  return S_OK;
}

HRESULT ReadParameter(ITypeInfo* info, const ELEMDESC& declared, Parameter& out) {
  out.isOutput = (declared.paramdesc.wParamFlags & (PARAMFLAG_FOUT | PARAMFLAG_FRETVAL)) != 0;
  const TYPEDESC& type = out.isOutput ? *declared.tdesc.lptdesc : declared.tdesc;
  out.type = type.vt;
  if (type.vt == VT_USERDEFINED) out.type = VT_I4;
  if (type.vt == VT_PTR) out.type = VT_DISPATCH;
  out.iid = IID_IDispatch;
  if (type.vt != VT_PTR || out.isOutput) return S_OK;
  Ref<ITypeInfo> object;
  TYPEATTR attributes{};
  HRESULT hr = info->GetRefTypeInfo(type.lptdesc->hreftype, object.receive());
  if (SUCCEEDED(hr)) hr = ReadAttributes(object.get(), attributes);
  if (SUCCEEDED(hr)) out.iid = attributes.guid;
  return hr;
}

wchar_t SmallLetter(wchar_t letter) { return letter >= L'A' && letter <= L'Z' ? letter | 0x20 : letter; }

/// Compares names without regard to the case of their letters, which are ASCII.
int Compare(const wchar_t* left, const wchar_t* right) {
  while (*left && SmallLetter(*left) == SmallLetter(*right)) ++left, ++right;
  return SmallLetter(*left) - SmallLetter(*right);
}

/// The half of a dual interface in which every output is a parameter and every member has its slot.
Ref<ITypeInfo> VirtualTableHalf(ITypeInfo* info) {
  HREFTYPE half = 0;
  Ref<ITypeInfo> found;
  if (FAILED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &half)) ||
      FAILED(info->GetRefTypeInfo(half, found.receive())))
    return Ref<ITypeInfo>(info);
  return found;
}

}  // namespace

UINT Member::lastOutput() const {
  for (UINT i = count; i-- > 0;)
    if (parameters[i].isOutput) return i;
  return count;
}

HRESULT InterfaceInfo::load(REFIID iid, std::unique_ptr<InterfaceInfo>& out) {
  std::unique_ptr<InterfaceInfo> loaded(new (std::nothrow) InterfaceInfo);
  if (!loaded) return E_OUTOFMEMORY;
  Ref<ITypeLib> library;
  HRESULT hr = LoadOwnTypeLib(library.receive());
  if (SUCCEEDED(hr)) hr = library->GetTypeInfoOfGuid(iid, loaded->info_.receive());
  if (SUCCEEDED(hr)) hr = loaded->readMembers(VirtualTableHalf(loaded->typeInfo()).get());
  if (SUCCEEDED(hr)) out = std::move(loaded);
  return hr;
}

HRESULT InterfaceInfo::readMembers(ITypeInfo* described) {
  TYPEATTR attributes{};
  HRESULT hr = ReadAttributes(described, attributes);
  if (FAILED(hr)) return hr;
  UINT parameterCount = 0;
  for (UINT i = 0; i < attributes.cFuncs; ++i) {
    Description function(described);
    hr = function.read(i);
    if (FAILED(hr)) return hr;
    parameterCount += static_cast<UINT>(function->cParams);
  }
  members_.reset(new (std::nothrow) Member[attributes.cFuncs]);
  names_.reset(new (std::nothrow) Name[attributes.cFuncs]);
  parameters_.reset(new (std::nothrow) Parameter[parameterCount]);
  if (!members_ || !names_ || !parameters_) return E_OUTOFMEMORY;

  Parameter* parameters = parameters_.get();
  for (UINT i = 0; i < attributes.cFuncs; ++i) {
    Description function(described);
    hr = function.read(i);
    if (FAILED(hr)) return hr;
    UINT count = static_cast<UINT>(function->cParams);
    for (UINT k = 0; k < count; ++k) {
      hr = ReadParameter(described, function->lprgelemdescParam[k], parameters[k]);
      if (FAILED(hr)) return hr;
    }
    members_[i] = {.id = function->memid,
                   .kind = static_cast<WORD>(function->invkind),
                   .slot = static_cast<ULONG_PTR>(function->oVft),
                   .count = count,
                   .parameters = parameters,
                   .takesDate = count == 1 && !parameters[0].isOutput && parameters[0].type == VT_DATE};
    hr = addName(described, function->memid);
    if (FAILED(hr)) return hr;
    parameters += count;
  }
  memberCount_ = attributes.cFuncs;
  return S_OK;
}

HRESULT InterfaceInfo::addName(ITypeInfo* described, DISPID id) {
  Bstr name;
  UINT count = 0;
  HRESULT hr = described->GetNames(id, name.receive(), 1, &count);
  if (FAILED(hr)) return hr;
  if (count == 0) return E_UNEXPECTED;
  UINT place = placeOf(name.get());
  // The accessors of a property share its name.
  if (place < nameCount_ && Compare(names_[place].text.get(), name.get()) == 0) return S_OK;
  for (UINT i = nameCount_++; i > place; --i) std::swap(names_[i], names_[i - 1]);
  names_[place] = {std::move(name), id};
  return S_OK;
}

UINT InterfaceInfo::placeOf(const wchar_t* name) const {
  UINT low = 0;
  UINT high = nameCount_;
  while (low < high) {
    UINT middle = (low + high) / 2;
    if (Compare(names_[middle].text.get(), name) < 0) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

HRESULT InterfaceInfo::idsOfNames(LPOLESTR* names, UINT count, DISPID* ids) const {
  // The platform reads all names of the interface in turn; it knows those of arguments and of IDispatch too.
  if (count == 1 && names && ids && *names) {
    UINT place = placeOf(*names);
    if (place < nameCount_ && Compare(names_[place].text.get(), *names) == 0) {
      *ids = names_[place].id;
      return S_OK;
    }
  }
  return info_->GetIDsOfNames(names, count, ids);
}

const Member* InterfaceInfo::find(DISPID id, WORD flags) const {
  for (UINT i = 0; i < memberCount_; ++i)
    if (members_[i].id == id && (members_[i].kind & flags)) return &members_[i];
  return nullptr;
}

HRESULT LoadOnce(REFIID iid, std::atomic<InterfaceInfo*>& cache, module::CleanUp cleanUp) {
  module::Guard guard;
  if (cache.load()) return S_OK;
  std::unique_ptr<InterfaceInfo> info;
  HRESULT hr = InterfaceInfo::load(iid, info);
  if (FAILED(hr)) return hr;
  cache.store(info.release());
  module::AtDetach(cleanUp);
  return S_OK;
}

}  // namespace com
