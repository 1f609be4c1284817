// Reads the type library inside the module under test, as an object browser does, and calls what it describes.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <ostream>
#include <string>
#include <vector>

#include "support/ptr.h"
#include "support/values.h"

Ptr<ITypeLib> ModuleTypeLibrary();
/// The type information of a name; null if the library has none.
Ptr<ITypeInfo> TypeNamed(ITypeLib* library, const std::string& name);
/// The virtual-table view of an interface, also where the library holds a dispatch view.
Ptr<ITypeInfo> VirtualTableOf(ITypeInfo* info);

/// A class with its default interface.
struct CoClass {
  std::string name;
  CLSID clsid;
  std::string interfaceName;
  IID iid;
};
std::ostream& operator<<(std::ostream& out, const CoClass& coclass);

/// Every class of the library.
const std::vector<CoClass>& Classes();
const CoClass& ClassOf(REFIID defaultInterface);
const CoClass& ClassOf(const std::string& defaultInterface);

struct Argument {
  std::string name;
  /// As an IDL file writes it: "long", "VARIANT*", "ISignParam*".
  std::string type;
  USHORT flags;

  bool isOutput() const { return (flags & PARAMFLAG_FOUT) != 0; }
};

/// A method, or one direction of a property.
struct Member {
  MEMBERID id;
  INVOKEKIND kind;
  std::string name;
  int offset;  ///< in the virtual table
  std::vector<Argument> arguments;
};

/// The own members of an interface in the order of their slots.
std::vector<Member> MembersOf(ITypeInfo* info);
std::vector<Member> MembersOf(const std::string& interfaceName);
/// The members as InterfaceTable lists them: one line for a method, and one for both directions of a property.
std::vector<std::string> ListingOf(const std::vector<Member>& members);
/// The members of an enumeration, as EnumTable lists them.
std::string ConstantsOf(ITypeInfo* info);

/// An argument of CallSlot, passed as C++ passes it.
class SlotValue {
 public:
  SlotValue(const VARIANT& value) : type_(VT_VARIANT), value_(value) {}
  SlotValue(const Variant& value) : SlotValue(value.get()) {}
  SlotValue(DATE value) : type_(VT_DATE) { V_DATE(&value_) = value; }
  SlotValue(int value) { V_I8(&value_) = value; }
  SlotValue(long value) : SlotValue(static_cast<int>(value)) {}
  SlotValue(const void* value) { V_I8(&value_) = reinterpret_cast<intptr_t>(value); }
  SlotValue(const Bstr& value) : SlotValue(static_cast<const void*>(static_cast<BSTR>(value))) {}
  template <class Interface>
  SlotValue(const Ptr<Interface>& value) : SlotValue(static_cast<const void*>(value.get())) {}

  VARTYPE type() const { return type_; }
  VARIANT* value() { return &value_; }

 private:
  VARTYPE type_ = VT_I8;
  VARIANT value_{};
};

/// Calls a member through its slot, without the declarations of a header.
HRESULT CallSlot(IUnknown* object, const Member& member, std::vector<SlotValue> arguments);

std::string NameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL);
/// The name by which the library's own members refer to a type.
std::string DeclaredNameOf(ITypeInfo* info);
/// The name of the interface that an object describes itself by.
std::string InterfaceNameOf(IDispatch* object);
std::string HelpOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL);
/// The type's names that have no help string, with those of its members ("ICertId.issuer").
std::vector<std::string> WithoutHelp(ITypeInfo* info);

struct TypeFacts {
  GUID guid;
  TYPEKIND kind;
  WORD flags;
  WORD members;
  WORD implemented;
};
TypeFacts FactsOf(ITypeInfo* info);

/// Between the narrow names of this file and the wide ones of automation; other characters than ASCII become '?'.
std::string Narrow(const std::wstring& text);
std::wstring Widen(const std::string& text);
