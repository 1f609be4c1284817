// Reads a type library the way an object browser does, as text.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <map>
#include <string>
#include <vector>

#include "support/ptr.h"

/// The type library inside the module under test.
Ptr<ITypeLib> moduleTypeLibrary();
/// The type information of a name; null when the library has none.
Ptr<ITypeInfo> typeNamed(ITypeLib* library, const std::string& name);
/// The virtual-table view of an interface, also where the library holds a dispatch view.
Ptr<ITypeInfo> virtualTableOf(ITypeInfo* info);

/// The own members of an interface in the order of their slots, as in InterfaceTable.
std::vector<std::string> membersOf(ITypeInfo* info);
/// The offsets of the own members in the virtual table.
std::vector<int> slotOffsetsOf(ITypeInfo* info);
/// The members of an enumeration.
std::map<std::string, int32_t> constantsOf(ITypeInfo* info);

std::string nameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL);
std::string helpOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL);
/// The type's names that have no help string, with those of its members ("ICertId.issuer").
std::vector<std::string> withoutHelp(ITypeInfo* info);

struct TypeFacts {
  GUID guid;
  TYPEKIND kind;
  WORD flags;
  WORD members;
  WORD implemented;
};
TypeFacts factsOf(ITypeInfo* info);

std::string narrow(const std::wstring& text);
