#include "com/class_factory.h"

#include "com/object.h"

namespace com {
namespace {

/// Lives as long as the module: unlike every other object it does not lock it.
class ClassFactory : public IClassFactory {
 public:
  using Primary = IClassFactory;

  explicit ClassFactory(Creator creator) : creator_(creator) {}

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) final {
    if (!out) return E_POINTER;
    *out = nullptr;
    return creator_(outer, iid, out);
  }
  STDMETHODIMP LockServer(BOOL lock) final {
    lock ? module::Lock() : module::Unlock();
    return S_OK;
  }

 protected:
  ~ClassFactory() = default;
  void* find(REFIID iid) { return iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr; }

 private:
  const Creator creator_;
};

}  // namespace

IClassFactory* NewClassFactory(Creator creator) { return new (std::nothrow) Plain<ClassFactory>(creator); }

}  // namespace com
