#include "support/type_library.h"

#include <gtest/gtest.h>
#include <oleauto.h>

#include <algorithm>

#include "support/module.h"
#include "support/values.h"

namespace {

class Attributes {
 public:
  explicit Attributes(ITypeInfo* info) : info_(info) { info_->GetTypeAttr(&attributes_); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { info_->ReleaseTypeAttr(attributes_); }
  const TYPEATTR* operator->() const { return attributes_; }

 private:
  ITypeInfo* info_;
  TYPEATTR* attributes_ = nullptr;
};

class Function {
 public:
  Function(ITypeInfo* info, UINT index) : info_(info) { info_->GetFuncDesc(index, &description_); }
  Function(const Function&) = delete;
  Function& operator=(const Function&) = delete;
  ~Function() { info_->ReleaseFuncDesc(description_); }
  const FUNCDESC* operator->() const { return description_; }

 private:
  ITypeInfo* info_;
  FUNCDESC* description_ = nullptr;
};

std::string textOfType(ITypeInfo* info, const TYPEDESC& type) {
  switch (type.vt) {
    case VT_PTR:
      return textOfType(info, *type.lptdesc) + "*";
    case VT_USERDEFINED: {
      Ptr<ITypeInfo> referred;
      info->GetRefTypeInfo(type.hreftype, referred.out());
      return referred.get() == nullptr ? "?" : nameOf(referred);
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

std::string textOfFlags(USHORT flags) {
  std::string text;
  const std::pair<USHORT, const char*> known[]{
      {PARAMFLAG_FIN, "in"}, {PARAMFLAG_FOUT, "out"}, {PARAMFLAG_FRETVAL, "retval"}, {PARAMFLAG_FOPT, "optional"}};
  for (const auto& [flag, name] : known) {
    if (flags & flag) text += (text.empty() ? "" : ", ") + std::string(name);
  }
  return "[" + text + "]";
}

std::string textOfFunction(ITypeInfo* info, const Function& function) {
  std::vector<BSTR> names(function->cParams + 1, nullptr);
  UINT count = 0;
  info->GetNames(function->memid, names.data(), static_cast<UINT>(names.size()), &count);
  const bool method = function->invkind == INVOKE_FUNC;
  std::string text = std::to_string(function->memid) + " ";
  if (function->invkind == INVOKE_PROPERTYGET) text += "get ";
  if (function->invkind == INVOKE_PROPERTYPUT) text += "put ";
  if (function->invkind == INVOKE_PROPERTYPUTREF) text += "putref ";
  text += (names[0] == nullptr ? "?" : narrow(names[0])) + "(";
  for (SHORT i = 0; i < function->cParams; ++i) {
    const ELEMDESC& parameter = function->lprgelemdescParam[i];
    text += (i == 0 ? "" : ", ") + textOfFlags(parameter.paramdesc.wParamFlags) + " ";
    text += textOfType(info, parameter.tdesc);
    if (method) text += " " + (names[i + 1] == nullptr ? "?" : narrow(names[i + 1]));
  }
  for (BSTR name : names) SysFreeString(name);
  return text + ")";
}

}  // namespace

std::string narrow(const std::wstring& text) {
  std::string narrowed;
  for (wchar_t character : text) narrowed.push_back(character < 128 ? static_cast<char>(character) : '?');
  return narrowed;
}

Ptr<ITypeLib> moduleTypeLibrary() {
  Ptr<ITypeLib> library;
  LoadTypeLibEx(Module::get().path().c_str(), REGKIND_NONE, library.out());
  return library;
}

Ptr<ITypeInfo> typeNamed(ITypeLib* library, const std::string& name) {
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    Ptr<ITypeInfo> info;
    library->GetTypeInfo(i, info.out());
    if (nameOf(info) == name) return info;
  }
  return {};
}

Ptr<ITypeInfo> virtualTableOf(ITypeInfo* info) {
  HREFTYPE reference;
  Ptr<ITypeInfo> other;
  if (factsOf(info).kind == TKIND_DISPATCH && info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference) == S_OK) {
    info->GetRefTypeInfo(reference, other.out());
    return other;
  }
  return Ptr<ITypeInfo>::share(info);
}

std::vector<std::string> membersOf(ITypeInfo* info) {
  std::vector<std::string> members;
  for (UINT i = 0; i < factsOf(info).members; ++i) members.push_back(textOfFunction(info, Function(info, i)));
  return members;
}

std::vector<int> slotOffsetsOf(ITypeInfo* info) {
  std::vector<int> offsets;
  for (UINT i = 0; i < factsOf(info).members; ++i) offsets.push_back(Function(info, i)->oVft);
  return offsets;
}

std::map<std::string, int32_t> constantsOf(ITypeInfo* info) {
  std::map<std::string, int32_t> constants;
  Attributes attributes(info);
  for (UINT i = 0; i < attributes->cVars; ++i) {
    VARDESC* variable = nullptr;
    info->GetVarDesc(i, &variable);
    constants[nameOf(info, variable->memid)] = V_I4(variable->lpvarValue);
    info->ReleaseVarDesc(variable);
  }
  return constants;
}

std::string nameOf(ITypeInfo* info, MEMBERID member) {
  Bstr name;
  info->GetDocumentation(member, name.inOut(), nullptr, nullptr, nullptr);
  return narrow(name.text());
}

std::string helpOf(ITypeInfo* info, MEMBERID member) {
  Bstr help;
  info->GetDocumentation(member, nullptr, help.inOut(), nullptr, nullptr);
  return narrow(help.text());
}

std::vector<std::string> withoutHelp(ITypeInfo* info) {
  std::vector<std::string> missing;
  const std::string name = nameOf(info);
  if (helpOf(info).empty()) missing.push_back(name);
  Attributes attributes(info);
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    // GetDocumentation answers for the identifier, which get and put share.
    const MEMBERID member = Function(info, i)->memid;
    if (helpOf(info, member).empty()) missing.push_back(name + "." + nameOf(info, member));
  }
  for (UINT i = 0; i < attributes->cVars; ++i) {
    VARDESC* variable = nullptr;
    info->GetVarDesc(i, &variable);
    if (helpOf(info, variable->memid).empty()) missing.push_back(name + "." + nameOf(info, variable->memid));
    info->ReleaseVarDesc(variable);
  }
  return missing;
}

TypeFacts factsOf(ITypeInfo* info) {
  Attributes attributes(info);
  return {attributes->guid, attributes->typekind, attributes->wTypeFlags, attributes->cFuncs, attributes->cImplTypes};
}
