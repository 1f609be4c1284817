#include "support/type_library.h"

#include <gtest/gtest.h>
#include <oleauto.h>

#include <algorithm>
#include <stdexcept>

#include "support/module.h"

namespace {

/// A description that the type information lends.
template <class Description, void (STDMETHODCALLTYPE ITypeInfo::*release)(Description*)>
class Lent {
 public:
  Lent(ITypeInfo* info, HRESULT (STDMETHODCALLTYPE ITypeInfo::*get)(Description**)) : info_(info) {
    (info->*get)(&description_);
  }
  Lent(ITypeInfo* info, HRESULT (STDMETHODCALLTYPE ITypeInfo::*get)(UINT, Description**), UINT index) : info_(info) {
    (info->*get)(index, &description_);
  }
  Lent(const Lent&) = delete;
  Lent& operator=(const Lent&) = delete;
  ~Lent() { (info_->*release)(description_); }
  const Description* operator->() const { return description_; }

 private:
  ITypeInfo* info_;
  Description* description_ = nullptr;
};

using Attributes = Lent<TYPEATTR, &ITypeInfo::ReleaseTypeAttr>;
using Function = Lent<FUNCDESC, &ITypeInfo::ReleaseFuncDesc>;
using Variable = Lent<VARDESC, &ITypeInfo::ReleaseVarDesc>;

Attributes AttributesOf(ITypeInfo* info) { return Attributes(info, &ITypeInfo::GetTypeAttr); }
Function FunctionAt(ITypeInfo* info, UINT index) { return Function(info, &ITypeInfo::GetFuncDesc, index); }
Variable VariableAt(ITypeInfo* info, UINT index) { return Variable(info, &ITypeInfo::GetVarDesc, index); }

std::string TypeText(ITypeInfo* info, const TYPEDESC& type) {
  switch (type.vt) {
    case VT_PTR:
      return TypeText(info, *type.lptdesc) + "*";
    case VT_USERDEFINED: {
      Ptr<ITypeInfo> referred;
      info->GetRefTypeInfo(type.hreftype, referred.out());
      return referred.get() == nullptr ? "?" : DeclaredNameOf(referred);
    }
    case VT_BSTR:
      return "BSTR";
    case VT_VARIANT:
      return "VARIANT";
    case VT_BOOL:
      return "VARIANT_BOOL";
    case VT_DISPATCH:
      return "IDispatch*";
    case VT_I4:
    case VT_INT:
      return "long";
    case VT_DATE:
      return "DATE";
    default:
      return "VARTYPE " + std::to_string(type.vt);
  }
}

std::string FlagsText(USHORT flags) {
  std::string text;
  const std::pair<USHORT, const char*> known[]{
      {PARAMFLAG_FIN, "in"}, {PARAMFLAG_FOUT, "out"}, {PARAMFLAG_FRETVAL, "retval"}, {PARAMFLAG_FOPT, "optional"}};
  for (const auto& [flag, name] : known) {
    if (flags & flag) text += (text.empty() ? "" : ", ") + std::string(name);
  }
  return "[" + text + "]";
}

Member MemberAt(ITypeInfo* info, UINT index) {
  const Function function = FunctionAt(info, index);
  std::vector<Bstr> names(function->cParams + 1u);
  std::vector<BSTR> raw(names.size());
  UINT count = 0;
  info->GetNames(function->memid, raw.data(), static_cast<UINT>(raw.size()), &count);
  for (size_t i = 0; i < raw.size(); ++i) *names[i].inOut() = raw[i];
  Member member{function->memid, function->invkind, Narrow(names[0].text()), function->oVft, {}};
  for (SHORT i = 0; i < function->cParams; ++i) {
    const ELEMDESC& parameter = function->lprgelemdescParam[i];
    member.arguments.push_back(
        {Narrow(names[i + 1u].text()), TypeText(info, parameter.tdesc), parameter.paramdesc.wParamFlags});
  }
  return member;
}

std::string TextOf(const Member& member) {
  std::string text = std::to_string(member.id) + " ";
  if (member.kind == INVOKE_PROPERTYGET) text += "get ";
  if (member.kind == INVOKE_PROPERTYPUT) text += "put ";
  if (member.kind == INVOKE_PROPERTYPUTREF) text += "putref ";
  text += member.name + "(";
  for (const Argument& argument : member.arguments) {
    if (text.back() != '(') text += ", ";
    text += FlagsText(argument.flags) + " " + argument.type;
    if (!argument.name.empty()) text += " " + argument.name;
  }
  return text + ")";
}

/// True if `put` assigns exactly what `get` returns.
bool ArePair(const Member& get, const Member& put) {
  const bool isPut = put.kind == INVOKE_PROPERTYPUT || put.kind == INVOKE_PROPERTYPUTREF;
  return get.kind == INVOKE_PROPERTYGET && isPut && get.id == put.id && get.name == put.name &&
         get.arguments.size() == 1 && put.arguments.size() == 1 &&
         get.arguments[0].flags == (PARAMFLAG_FOUT | PARAMFLAG_FRETVAL) && put.arguments[0].flags == PARAMFLAG_FIN &&
         get.arguments[0].type == put.arguments[0].type + "*";
}

std::vector<CoClass> ReadClasses() {
  std::vector<CoClass> classes;
  Ptr<ITypeLib> library = ModuleTypeLibrary();
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    Ptr<ITypeInfo> info, implemented;
    library->GetTypeInfo(i, info.out());
    if (FactsOf(info).kind != TKIND_COCLASS) continue;
    HREFTYPE reference = 0;
    info->GetRefTypeOfImplType(0, &reference);
    info->GetRefTypeInfo(reference, implemented.out());
    classes.push_back({NameOf(info), FactsOf(info).guid, NameOf(implemented), FactsOf(implemented).guid});
  }
  return classes;
}

template <class Condition>
const CoClass& ClassWhere(Condition condition) {
  const auto found = std::find_if(Classes().begin(), Classes().end(), condition);
  if (found == Classes().end()) throw std::out_of_range("no class with this default interface");
  return *found;
}

}  // namespace

std::string Narrow(const std::wstring& text) {
  std::string narrowed;
  for (wchar_t character : text) narrowed.push_back(character < 128 ? static_cast<char>(character) : '?');
  return narrowed;
}

std::wstring Widen(const std::string& text) { return std::wstring(text.begin(), text.end()); }

Ptr<ITypeLib> ModuleTypeLibrary() {
  Ptr<ITypeLib> library;
  LoadTypeLibEx(Module::get().path().c_str(), REGKIND_NONE, library.out());
  return library;
}

Ptr<ITypeInfo> TypeNamed(ITypeLib* library, const std::string& name) {
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    Ptr<ITypeInfo> info;
    library->GetTypeInfo(i, info.out());
    if (NameOf(info) == name) return info;
  }
  return {};
}

Ptr<ITypeInfo> VirtualTableOf(ITypeInfo* info) {
  HREFTYPE reference;
  Ptr<ITypeInfo> other;
  if (FactsOf(info).kind == TKIND_DISPATCH && info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference) == S_OK) {
    info->GetRefTypeInfo(reference, other.out());
    return other;
  }
  return Ptr<ITypeInfo>::share(info);
}

std::ostream& operator<<(std::ostream& out, const CoClass& coclass) { return out << coclass.name; }

const std::vector<CoClass>& Classes() {
  static const std::vector<CoClass> kClasses = ReadClasses();
  return kClasses;
}

const CoClass& ClassOf(REFIID defaultInterface) {
  return ClassWhere([&](const CoClass& coclass) { return coclass.iid == defaultInterface; });
}

const CoClass& ClassOf(const std::string& defaultInterface) {
  return ClassWhere([&](const CoClass& coclass) { return coclass.interfaceName == defaultInterface; });
}

std::vector<Member> MembersOf(ITypeInfo* info) {
  std::vector<Member> members;
  for (UINT i = 0; i < FactsOf(info).members; ++i) members.push_back(MemberAt(info, i));
  return members;
}

std::vector<Member> MembersOf(const std::string& interfaceName) {
  return MembersOf(VirtualTableOf(TypeNamed(ModuleTypeLibrary(), interfaceName)));
}

std::vector<std::string> ListingOf(const std::vector<Member>& members) {
  std::vector<std::string> lines;
  for (size_t i = 0; i < members.size(); ++i) {
    const Member& member = members[i];
    if (i + 1 < members.size() && ArePair(member, members[i + 1])) {
      const Member& put = members[++i];
      const char* reference = put.kind == INVOKE_PROPERTYPUTREF ? " by reference" : "";
      lines.push_back(std::to_string(member.id) + " " + member.name + " " + put.arguments[0].type + reference);
    } else {
      lines.push_back(TextOf(member));
    }
  }
  return lines;
}

std::string ConstantsOf(ITypeInfo* info) {
  std::string constants;
  for (UINT i = 0; i < AttributesOf(info)->cVars; ++i) {
    const Variable variable = VariableAt(info, i);
    if (i > 0) constants += ", ";
    constants += NameOf(info, variable->memid) + "=" + std::to_string(V_I4(variable->lpvarValue));
  }
  return constants;
}

HRESULT CallSlot(IUnknown* object, const Member& member, std::vector<SlotValue> arguments) {
  std::vector<VARTYPE> types;
  std::vector<VARIANT*> values;
  for (SlotValue& argument : arguments) {
    types.push_back(argument.type());
    values.push_back(argument.value());
  }
  VARIANT result{};
  const HRESULT called = DispCallFunc(object, static_cast<ULONG_PTR>(member.offset), CC_STDCALL, VT_ERROR,
                                      static_cast<UINT>(values.size()), types.data(), values.data(), &result);
  if (FAILED(called)) throw std::runtime_error("the slot of " + member.name + " cannot be called");
  return V_ERROR(&result);
}

std::string NameOf(ITypeInfo* info, MEMBERID member) {
  Bstr name;
  info->GetDocumentation(member, name.inOut(), nullptr, nullptr, nullptr);
  return Narrow(name.text());
}

std::string DeclaredNameOf(ITypeInfo* info) {
  const std::string name = NameOf(info);
  // The tag and the name of this one enumeration are both used.
  return name == "__MIDL_IQUIVO_0001" ? "Init_Flag_t" : name;
}

std::string InterfaceNameOf(IDispatch* object) {
  Ptr<ITypeInfo> info;
  object->GetTypeInfo(0, LOCALE_NEUTRAL, info.out());
  return info.get() == nullptr ? "" : NameOf(info);
}

std::string HelpOf(ITypeInfo* info, MEMBERID member) {
  Bstr help;
  info->GetDocumentation(member, nullptr, help.inOut(), nullptr, nullptr);
  return Narrow(help.text());
}

std::vector<std::string> WithoutHelp(ITypeInfo* info) {
  std::vector<std::string> missing;
  const std::string name = NameOf(info);
  const auto check = [&](MEMBERID member) {
    if (HelpOf(info, member).empty()) missing.push_back(name + "." + NameOf(info, member));
  };
  if (HelpOf(info).empty()) missing.push_back(name);
  // GetDocumentation answers for the identifier, which get and put share.
  for (const Member& member : MembersOf(info)) check(member.id);
  for (UINT i = 0; i < AttributesOf(info)->cVars; ++i) check(VariableAt(info, i)->memid);
  return missing;
}

TypeFacts FactsOf(ITypeInfo* info) {
  const Attributes attributes = AttributesOf(info);
  return {attributes->guid, attributes->typekind, attributes->wTypeFlags, attributes->cFuncs, attributes->cImplTypes};
}
