// The classes of the module, in the order of registration, with their factories.
#pragma once

#include <atomic>
#include <span>

#include "com/class_factory.h"

namespace module {

struct ClassEntry {
  const CLSID* clsid;
  /// Resource (type REGISTRY) of the registration script.
  WORD script;
  com::Creator create;
  /// Made on the first request and kept until the module is unloaded.
  std::atomic<IClassFactory*> factory = nullptr;
};

std::span<ClassEntry> ClassTable();

/// An interface of the factory of a class. CLASS_E_CLASSNOTAVAILABLE for a class of others, E_OUTOFMEMORY,
/// or why there is no engine (engine::Load).
HRESULT GetFactory(REFCLSID clsid, REFIID iid, void** out);

void ReleaseFactories();

}  // namespace module
