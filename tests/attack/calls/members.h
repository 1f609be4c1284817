// Everything that can be called, as the type library describes it.
#pragma once

#include <string>
#include <vector>

#include "support/type_library.h"

struct Target {
  const CoClass* coclass;
  Member member;
  /// An output is overwritten without being cleared: it must not own anything.
  bool overwrites;

  std::string name() const { return coclass->name + "." + member.name; }
};

/// Every member of every class, each accessor of a property by itself.
const std::vector<Target>& Targets();
/// Those that are no accessors.
const std::vector<const Target*>& MethodTargets();

/// The interface that a declared type like "ISignParam*" points to; empty for other types.
std::string InterfaceOf(const std::string& type);
