// The one table of the module's classes, in registration order. Everything that is done for each class walks it.
#pragma once

#include <span>

#include "com/class_factory.h"

struct ClassEntry {
  const CLSID* clsid;
  /// The versioned ProgID; the version-independent one lacks the trailing ".1".
  const wchar_t* progId;
  const wchar_t* description;
  /// Resource (type REGISTRY) of the registration script.
  WORD script;
  com::Creator create;
};

std::span<const ClassEntry> ClassTable();
