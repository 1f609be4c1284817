#include "com/class_factory.h"

#include <atomic>
#include <new>

#include "com/module.h"

namespace com {
namespace {

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(Creator creator) : creator_(creator) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    *out = iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
    if (!*out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    return creator_(outer, iid, out);
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    lock ? module::Lock() : module::Unlock();
    return S_OK;
  }

 private:
  Creator creator_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace

IClassFactory* NewClassFactory(Creator creator) { return new (std::nothrow) ClassFactory(creator); }

}  // namespace com
