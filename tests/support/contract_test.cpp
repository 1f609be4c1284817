#include "support/contract_test.h"

#include "support/malloc_spy.h"
#include "support/object_safety.h"

Ptr<IUnknown> MakeUnknown(REFCLSID clsid, REFIID iid) {
  Ptr<IClassFactory> factory = FactoryOf(clsid);
  Ptr<IUnknown> object;
  if (factory.get() != nullptr) {
    EXPECT_OK(factory->CreateInstance(nullptr, iid, object.voidOut()));
  }
  return object;
}

ContractTest::ContractTest() {
  engine().reset();
  const Module& module = Module::get();
  objects_ = module.liveObjects();
  allocations_ = module.liveAllocations();
  comMark_ = MallocSpy::get().mark();
}

ContractTest::~ContractTest() {
  const Module& module = Module::get();
  module.failAllocation(-1);
  MallocSpy::get().failAllocation(-1);
  if (countsObjects_) {
    EXPECT_EQ(objects_, module.liveObjects()) << "live objects of the module";
    EXPECT_EQ(allocations_, module.liveAllocations()) << "live allocations of the module";
  }
  EXPECT_EQ(std::vector<std::string>{}, engine().outstanding()) << "engine memory that was not given back";
  EXPECT_EQ(std::vector<std::string>{}, engine().violations());
  EXPECT_EQ(0u, engine().openSessions()) << "engine sessions that were not closed";
  MallocSpy& spy = MallocSpy::get();
  if (countsComMemory_) {
    EXPECT_EQ(0u, spy.outstandingSince(comMark_)) << "BSTRs, SAFEARRAYs and other COM memory\n" << spy.since(comMark_);
  }
  EXPECT_EQ(std::vector<std::string>{}, spy.violations()) << "COM memory";
  engine().reset();
}

Ptr<IQUIVO> ContractTest::openQuivo() {
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  EXPECT_OK(quivo->InitMinimal());
  engine().forgetCalls();
  return quivo;
}

Ptr<IQUIVO> ContractTest::untrustedQuivo() {
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  Ptr<IObjectSafety> safety = quivo.as<IObjectSafety>();
  EXPECT_OK(safety->SetInterfaceSafetyOptions(IID_IDispatch, 2, 2));
  return quivo;
}
