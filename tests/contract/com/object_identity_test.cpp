// What every object of the module does as a COM object: identity, interfaces, counting, aggregation.
#include "support/contract_test.h"
#include "support/object_safety.h"
#include "support/outer_object.h"

namespace {

class ObjectIdentityTest : public ContractTest, public ::testing::WithParamInterface<CoClass> {
 protected:
  Ptr<IUnknown> makeOne() { return MakeUnknown(GetParam().clsid, IID_IUnknown); }
  Ptr<IClassFactory> factory() { return FactoryOf(GetParam().clsid); }
  Ptr<IUnknown> ask(IUnknown* object, REFIID iid) {
    Ptr<IUnknown> other;
    EXPECT_OK(object->QueryInterface(iid, other.voidOut()));
    return other;
  }
  IID defaultInterface() { return GetParam().iid; }
};

TEST_P(ObjectIdentityTest, EveryInterfaceLeadsToOneIdentity) {
  Ptr<IUnknown> object = makeOne();
  for (const IID& iid : {IID_IUnknown, IID_IDispatch, defaultInterface()}) {
    Ptr<IUnknown> other = ask(object, iid);
    ASSERT_NE(nullptr, other.get());
    EXPECT_EQ(object.get(), ask(other, IID_IUnknown).get());
  }
}

TEST_P(ObjectIdentityTest, DispatchInterfaceIsTheDefaultInterface) {
  Ptr<IUnknown> object = makeOne();
  EXPECT_EQ(ask(object, defaultInterface()).get(), ask(object, IID_IDispatch).get());
}

TEST_P(ObjectIdentityTest, UnknownInterfaceIsRefusedWithANullPointer) {
  Ptr<IUnknown> object = makeOne();
  void* other = this;
  EXPECT_HR(E_NOINTERFACE, object->QueryInterface(kOuterOnly, &other));
  EXPECT_EQ(nullptr, other);
}

TEST_P(ObjectIdentityTest, InterfaceOfAnotherClassIsRefused) {
  Ptr<IUnknown> object = makeOne();
  for (const CoClass& other : Classes()) {
    if (other.name == GetParam().name) continue;
    void* found = this;
    EXPECT_HR(E_NOINTERFACE, object->QueryInterface(other.iid, &found)) << other;
    EXPECT_EQ(nullptr, found);
  }
}

TEST_P(ObjectIdentityTest, NullPointerForAnInterfaceIsRefused) {
  EXPECT_HR(E_POINTER, makeOne()->QueryInterface(IID_IUnknown, nullptr));
}

TEST_P(ObjectIdentityTest, ReferencesAreCounted) {
  Ptr<IUnknown> object = makeOne();
  EXPECT_EQ(1u, object.references());
  EXPECT_EQ(2u, object->AddRef());
  EXPECT_EQ(1u, object->Release());
}

TEST_P(ObjectIdentityTest, ErrorInformationIsNotSupported) {
  EXPECT_EQ(nullptr, makeOne().as<ISupportErrorInfo>().get());
}

TEST_P(ObjectIdentityTest, OnlyTheMainObjectAnswersSafetyNegotiation) {
  const bool main = GetParam().name == "QUIVO";
  EXPECT_EQ(main, makeOne().as<IObjectSafety>().get() != nullptr);
}

TEST_P(ObjectIdentityTest, AggregatedObjectDelegatesToItsOuter) {
  OuterObject outer(factory());
  ASSERT_OK(outer.created);
  Ptr<IUnknown> own = ask(outer.inner, defaultInterface());
  ASSERT_NE(nullptr, own.get());
  EXPECT_EQ(static_cast<IUnknown*>(&outer), ask(own, IID_IUnknown).get());
  EXPECT_EQ(static_cast<IUnknown*>(&outer), ask(own, kOuterOnly).get());
}

TEST_P(ObjectIdentityTest, AggregatedObjectCountsOnItsOuter) {
  OuterObject outer(factory());
  ASSERT_OK(outer.created);
  const ULONG before = outer.references;
  Ptr<IUnknown> own = ask(outer.inner, IID_IDispatch);
  EXPECT_EQ(before + 1, outer.references);
  own.reset();
  EXPECT_EQ(before, outer.references);
}

TEST_P(ObjectIdentityTest, CreationAndDestructionLeaveTheOuterCountAlone) {
  OuterObject outer(factory());
  ASSERT_OK(outer.created);
  EXPECT_EQ(1u, outer.references);
  outer.inner.reset();
  EXPECT_EQ(1u, outer.references);
}

TEST_P(ObjectIdentityTest, InnerIUnknownIsTheObjectsOwn) {
  OuterObject outer(factory());
  ASSERT_OK(outer.created);
  EXPECT_NE(static_cast<IUnknown*>(&outer), outer.inner.get());
  EXPECT_EQ(outer.inner.get(), ask(outer.inner, IID_IUnknown).get());
  EXPECT_EQ(1u, outer.inner.references());
}

TEST_P(ObjectIdentityTest, InnerIUnknownRefusesUnknownInterfaces) {
  OuterObject outer(factory());
  ASSERT_OK(outer.created);
  void* other = this;
  EXPECT_HR(E_NOINTERFACE, outer.inner->QueryInterface(kOuterOnly, &other));
  EXPECT_EQ(nullptr, other);
  EXPECT_HR(E_POINTER, outer.inner->QueryInterface(IID_IUnknown, nullptr));
}

TEST_P(ObjectIdentityTest, AggregatedObjectIsCountedOnceAndGoesWithItsInner) {
  const long before = Module::get().liveObjects();
  OuterObject outer(factory());
  ASSERT_OK(outer.created);
  EXPECT_EQ(before + 1, Module::get().liveObjects());
  outer.inner.reset();
  EXPECT_EQ(before, Module::get().liveObjects());
}

TEST_P(ObjectIdentityTest, OuterMayAskForIUnknownOnly) {
  OuterObject outer(factory());
  ASSERT_OK(outer.created);
  for (const IID& iid : {IID_IDispatch, defaultInterface()}) {
    void* object = this;
    EXPECT_HR(CLASS_E_NOAGGREGATION, factory()->CreateInstance(&outer, iid, &object));
    EXPECT_EQ(nullptr, object);
  }
}

TEST_P(ObjectIdentityTest, AllocationFailureOfAnAggregatedObjectIsReported) {
  Ptr<IClassFactory> classObject = factory();
  Module::get().failAllocation(0);
  OuterObject outer(classObject);
  EXPECT_HR(E_OUTOFMEMORY, outer.created);
  EXPECT_EQ(nullptr, outer.inner.get());
}

INSTANTIATE_TEST_SUITE_P(Classes, ObjectIdentityTest, ::testing::ValuesIn(Classes()),
                         [](const auto& info) { return info.param.name; });

}  // namespace
