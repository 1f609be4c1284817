// What the module knows of its interfaces at run time: their type information and, read from it, the members as
// late-bound calls need them.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <atomic>
#include <memory>

#include "com/module.h"
#include "com/owner.h"
#include "com/ref.h"

namespace com {

/// One parameter of a member.
struct Parameter {
  /// What the member receives: VT_I4 for an enumeration, VT_DISPATCH for an object. For an output, what its pointer
  /// points to.
  VARTYPE type;
  bool isOutput;
  /// The interface that an object input is asked for.
  IID iid;
};

/// One method, or one accessor of a property. An accessor that reads returns its value as an output.
struct Member {
  DISPID id;
  /// The flag of IDispatch::Invoke that asks for it: DISPATCH_METHOD, DISPATCH_PROPERTYGET and so on.
  WORD kind;
  /// Offset in the virtual table, in bytes.
  ULONG_PTR slot;
  UINT count;
  const Parameter* parameters;
  /// Its one parameter is an input of VT_DATE.
  bool takesDate;

  /// The index of the last output; `count` if there is none.
  UINT lastOutput() const;
};

/// Type information and members of one interface. Read once and kept until the module is unloaded.
class InterfaceInfo {
 public:
  /// Reads the description of `iid` from the module's own file. Returns the platform's failure or E_OUTOFMEMORY.
  static HRESULT load(REFIID iid, std::unique_ptr<InterfaceInfo>& out);

  ITypeInfo* typeInfo() const { return info_.get(); }
  /// The member with `id` that `flags` of IDispatch::Invoke ask for; null if there is none.
  const Member* find(DISPID id, WORD flags) const;
  /// As IDispatch::GetIDsOfNames.
  HRESULT idsOfNames(LPOLESTR* names, UINT count, DISPID* ids) const;

 private:
  struct Name {
    Bstr text;
    DISPID id;
  };

  HRESULT readMembers(ITypeInfo* described);
  HRESULT addName(ITypeInfo* described, DISPID id);
  /// The place of the name in the order of names.
  UINT placeOf(const wchar_t* name) const;

  Ref<ITypeInfo> info_;
  UINT memberCount_ = 0;
  UINT nameCount_ = 0;
  std::unique_ptr<Member[]> members_;
  std::unique_ptr<Name[]> names_;
  std::unique_ptr<Parameter[]> parameters_;
};

/// Loads the description of `iid` into `cache`, at most once, and registers `cleanUp` for the end of the module.
HRESULT LoadOnce(REFIID iid, std::atomic<InterfaceInfo*>& cache, module::CleanUp cleanUp);

/// The description of one interface; lent, never freed by the caller.
template <class Interface>
HRESULT InfoOf(const InterfaceInfo** info) {
  static std::atomic<InterfaceInfo*> cache;
  if (!cache.load()) {
    HRESULT hr = LoadOnce(__uuidof(Interface), cache, [] { delete cache.exchange(nullptr); });
    if (FAILED(hr)) return hr;
  }
  *info = cache.load();
  return S_OK;
}

}  // namespace com
