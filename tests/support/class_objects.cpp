#include "support/class_objects.h"

#include <objbase.h>

#include <cstring>

#include "support/module.h"
#include "support/results.h"
#include "support/type_library.h"

namespace {

struct LessGuid {
  bool operator()(const GUID& a, const GUID& b) const { return std::memcmp(&a, &b, sizeof(GUID)) < 0; }
};

std::map<CLSID, DWORD, LessGuid> cookies;

DWORD Announce(REFCLSID clsid, IUnknown* factory) {
  DWORD cookie = 0;
  CoRegisterClassObject(clsid, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
  return cookie;
}

void AnnounceReal(REFCLSID clsid) { cookies[clsid] = Announce(clsid, FactoryOf(clsid)); }

}  // namespace

Ptr<IClassFactory> FactoryOf(REFCLSID clsid) {
  Ptr<IClassFactory> factory;
  EXPECT_OK(Module::get().classObject(clsid, IID_IClassFactory, factory.voidOut()));
  return factory;
}

ClassObjects::ClassObjects() {
  for (const CoClass& coclass : Classes()) AnnounceReal(coclass.clsid);
}

ClassObjects::~ClassObjects() {
  for (const auto& [clsid, cookie] : cookies) CoRevokeClassObject(cookie);
  cookies.clear();
}

SubstituteFactory::SubstituteFactory(REFCLSID clsid) : clsid_(clsid), real_(FactoryOf(clsid)) {
  CoRevokeClassObject(cookies[clsid_]);
  cookie_ = Announce(clsid_, this);
}

SubstituteFactory::~SubstituteFactory() {
  CoRevokeClassObject(cookie_);
  AnnounceReal(clsid_);
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
