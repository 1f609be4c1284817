#include "attack/calls/members.h"

#include <algorithm>
#include <set>

namespace {

/// "Text outputs overwrite" and "A count without a look" in docs/behaviour.md.
const std::set<std::string> kOverwriting{"GetPKIErrorTextVBS", "GetMyCertB64",    "GetCurrentProfileNameVBS",
                                         "CheckOID",           "SignFile2B64Mem", "StrDecryptInitMem",
                                         "StrDecryptUpdateMem"};

std::vector<Target> ReadTargets() {
  std::vector<Target> targets;
  for (const CoClass& coclass : Classes()) {
    for (const Member& member : MembersOf(coclass.interfaceName))
      targets.push_back({&coclass, member, kOverwriting.contains(member.name)});
  }
  return targets;
}

std::vector<const Target*> SelectMethods() {
  std::vector<const Target*> methods;
  for (const Target& target : Targets()) {
    if (target.member.kind == INVOKE_FUNC) methods.push_back(&target);
  }
  return methods;
}

}  // namespace

const std::vector<Target>& Targets() {
  static const std::vector<Target> kTargets = ReadTargets();
  return kTargets;
}

const std::vector<const Target*>& MethodTargets() {
  static const std::vector<const Target*> kMethods = SelectMethods();
  return kMethods;
}

std::string InterfaceOf(const std::string& type) {
  const std::string name = type.substr(0, type.find('*'));
  const bool isClass = std::ranges::any_of(Classes(), [&](const CoClass& c) { return c.interfaceName == name; });
  return isClass || name == "IDispatch" ? name : "";
}
