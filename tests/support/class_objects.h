// Class objects of this process. CoCreateInstance asks them before it asks the registry, so the tests need no
// registration and never meet another build of the module that the prefix knows.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <map>
#include <string>

#include "support/ptr.h"

/// The module's factory of a class.
Ptr<IClassFactory> FactoryOf(REFCLSID clsid);

/// Makes the module's factories known to COM for as long as it lives.
class ClassObjects {
 public:
  ClassObjects();
  ClassObjects(const ClassObjects&) = delete;
  ClassObjects& operator=(const ClassObjects&) = delete;
  ~ClassObjects();
};

/// Stands in for the factory of one class while it lives: counts the creations, and refuses one of them with a
/// result if a test asks for it.
class SubstituteFactory final : public IClassFactory {
 public:
  explicit SubstituteFactory(REFCLSID clsid);
  SubstituteFactory(const SubstituteFactory&) = delete;
  SubstituteFactory& operator=(const SubstituteFactory&) = delete;
  ~SubstituteFactory();

  /// Refuses the creation after `succeeding` further ones, and all that follow.
  void failAfter(int succeeding, HRESULT result) {
    failAt_ = created_ + succeeding;
    failure_ = result;
  }
  int created() const { return created_; }
  /// The interface identifier that the last creation asked for.
  const IID& asked() const { return asked_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  CLSID clsid_;
  DWORD cookie_ = 0;
  Ptr<IClassFactory> real_;
  IID asked_{};
  int created_ = 0;
  int failAt_ = -1;
  HRESULT failure_ = S_OK;
};
