#include "module/class_table.h"

#include "classes.h"
#include "com/module.h"
#include "engine/library.h"

namespace module {
namespace {

#define TAVL_ROW(name, script) {&__uuidof(name), script, com::Create<name>},
constinit ClassEntry table[] = {TAVL_CLASSES(TAVL_ROW)};
#undef TAVL_ROW

}  // namespace

std::span<ClassEntry> ClassTable() { return table; }

HRESULT GetFactory(REFCLSID clsid, REFIID iid, void** out) {
  for (ClassEntry& entry : table) {
    if (*entry.clsid != clsid) continue;
    HRESULT hr = engine::Load();
    if (FAILED(hr)) return hr;
    if (!entry.factory) {
      com::module::Guard guard;
      if (!entry.factory) entry.factory = com::NewClassFactory(entry.create);
    }
    IClassFactory* factory = entry.factory;
    return factory ? factory->QueryInterface(iid, out) : E_OUTOFMEMORY;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

void ReleaseFactories() {
  for (ClassEntry& entry : table)
    if (IClassFactory* factory = entry.factory.exchange(nullptr)) factory->Release();
}

}  // namespace module
