#include "support/class_objects.h"

#include <objbase.h>

#include <cstring>

#include "support/classes.h"
#include "support/module.h"

namespace {

struct LessGuid {
  bool operator()(const GUID& a, const GUID& b) const { return std::memcmp(&a, &b, sizeof(GUID)) < 0; }
};

std::map<CLSID, DWORD, LessGuid> cookies;

DWORD announce(REFCLSID clsid, IUnknown* factory) {
  DWORD cookie = 0;
  CoRegisterClassObject(clsid, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
  return cookie;
}

Ptr<IClassFactory> factoryOf(REFCLSID clsid) {
  Ptr<IClassFactory> factory;
  Module::get().classObject(clsid, IID_IClassFactory, factory.voidOut());
  return factory;
}

void announceReal(REFCLSID clsid) { cookies[clsid] = announce(clsid, factoryOf(clsid)); }

}  // namespace

ClassObjects::ClassObjects() {
  for (const ClassFacts& facts : kClasses) announceReal(guidOf(facts.clsid));
}

ClassObjects::~ClassObjects() {
  for (const auto& [clsid, cookie] : cookies) CoRevokeClassObject(cookie);
  cookies.clear();
}

SubstituteFactory::SubstituteFactory(REFCLSID clsid) : clsid_(clsid), real_(factoryOf(clsid)) {
  CoRevokeClassObject(cookies[clsid_]);
  cookie_ = announce(clsid_, this);
}

SubstituteFactory::~SubstituteFactory() {
  CoRevokeClassObject(cookie_);
  announceReal(clsid_);
}

STDMETHODIMP SubstituteFactory::QueryInterface(REFIID iid, void** object) {
  *object = iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
  return *object == nullptr ? E_NOINTERFACE : S_OK;
}

STDMETHODIMP SubstituteFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  *object = nullptr;
  asked_ = iid;
  if (failAt_ >= 0 && created_ >= failAt_) return failure_;
  ++created_;
  return real_->CreateInstance(outer, iid, object);
}
