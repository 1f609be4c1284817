// Properties that are arrays of objects: policies and extensions of VerifyParam and Certificate, receivers.
#include <functional>

#include "contract/properties/records.h"
#include "support/foreign_object.h"
#include "support/malloc_spy.h"

namespace {

struct ObjectArrayProperty {
  const char* name;
  Ptr<IDispatch> (*make)();
  HRESULT (*get)(IDispatch*, VARIANT*);
  HRESULT (*put)(IDispatch*, VARIANT);
  fake::Snapshot (*record)(IDispatch*);
  size_t countOffset, pointerOffset, elementSize;
  /// An element that the engine knows by a text, and where in its record the text stands.
  Ptr<IDispatch> (*element)(const wchar_t* text);
  size_t textOffset;
  bool takesVariants;
};

void PrintTo(const ObjectArrayProperty& row, std::ostream* out) { *out << row.name; }

Ptr<IDispatch> policy(const wchar_t* oid) {
  Ptr<IPolicy> policy = make<Policy>();
  EXPECT_OK(policy->put_oid(Bstr(oid)));
  return policy.as<IDispatch>();
}

Ptr<IDispatch> extension(const wchar_t* oid) {
  Ptr<IExtension> extension = make<Extension>();
  EXPECT_OK(extension->put_oid(Bstr(oid)));
  return extension.as<IDispatch>();
}

Ptr<IDispatch> receiver(const wchar_t* subject) {
  Ptr<ICertificate> certificate = make<Certificate>();
  EXPECT_OK(certificate->put_subject(Bstr(subject)));
  return certificate.as<IDispatch>();
}

#define ROW(class_, property, countOffset, pointerOffset, size, element, textOffset, takesVariants)              \
  ObjectArrayProperty {                                                                                          \
#class_ "_" #property, [] { return make<class_>().as<IDispatch>(); },                                          \
        [](IDispatch* o, VARIANT* value) { return static_cast<I##class_*>(o)->get_##property(value); },            \
        [](IDispatch* o, VARIANT value) { return static_cast<I##class_*>(o)->put_##property(value); },             \
        [](IDispatch* o) { return recordOf(static_cast<I##class_*>(o)); }, countOffset, pointerOffset, size, element, \
        textOffset, takesVariants \
  }

/// Too long for the place of a string that it replaces.
const std::wstring kLonger(200, L'x');

class ObjectArrayTest : public ContractTest, public ::testing::WithParamInterface<ObjectArrayProperty> {
 protected:
  void SetUp() override { object_ = GetParam().make(); }
  HRESULT get(Variant& value) { return GetParam().get(object_, value.out()); }
  HRESULT put(VARIANT value) { return GetParam().put(object_, value); }
  Ptr<IDispatch> element(const wchar_t* text) { return GetParam().element(text); }
  std::vector<Ptr<IDispatch>> kept() {
    Variant value = Variant::text(L"before");
    EXPECT_OK(get(value));
    return objectsOf(value);
  }
  fake::Snapshot record() { return GetParam().record(object_); }
  int32_t recordCount() { return record().i32(GetParam().countOffset); }
  std::string recordText(size_t index) {
    return record().at(GetParam().pointerOffset).element(index, GetParam().elementSize).text(GetParam().textOffset);
  }
  void expectRefused(VARIANT other) {
    Ptr<IDispatch> first = element(L"kept");
    EXPECT_OK(put(objects({first})));
    EXPECT_HR(E_INVALIDARG, put(other));
    ASSERT_EQ(1u, kept().size());
    EXPECT_EQ(first.get(), kept()[0].get());
    EXPECT_EQ("kept", recordText(0));
  }

 private:
  Ptr<IDispatch> object_;
};

TEST_P(ObjectArrayTest, NewObjectHasAnEmptyArray) {
  EXPECT_EQ(0u, kept().size());
  EXPECT_EQ(0, recordCount());
  EXPECT_EQ(0u, record().pointer(GetParam().pointerOffset));
}

TEST_P(ObjectArrayTest, ObjectsAreKeptInOrder) {
  Ptr<IDispatch> first = element(L"1"), second = element(L"2");
  EXPECT_OK(put(objects({first, second})));
  ASSERT_EQ(2u, kept().size());
  EXPECT_EQ(first.get(), kept()[0].get());
  EXPECT_EQ(second.get(), kept()[1].get());
}

TEST_P(ObjectArrayTest, EngineReadsTheRecordsInOneArray) {
  EXPECT_OK(put(objects({element(L"first"), element(L"\x0431")})));
  EXPECT_EQ(2, recordCount());
  EXPECT_EQ("first", recordText(0));
  EXPECT_EQ("\xE1", recordText(1));
}

TEST_P(ObjectArrayTest, ReferencesAreHeldOnce) {
  Ptr<IDispatch> held = element(L"1");
  EXPECT_OK(put(objects({held})));
  EXPECT_EQ(2u, held.references());
  EXPECT_OK(put(Variant()));
  EXPECT_EQ(1u, held.references());
}

TEST_P(ObjectArrayTest, SameObjectMayStandTwice) {
  Ptr<IDispatch> held = element(L"1");
  EXPECT_OK(put(objects({held, held})));
  EXPECT_EQ(3u, held.references());
  EXPECT_EQ("1", recordText(1));
}

TEST_P(ObjectArrayTest, ArraysByReferenceAreAccepted) {
  Ptr<IDispatch> held = element(L"1");
  Variant given = objects({held});
  Variant reference = byRefArray(given);
  for (const VARIANT& form : {reference.get(), byRef(given).get(), byRef(reference).get()}) {
    EXPECT_OK(put(Variant()));
    EXPECT_OK(put(form));
    EXPECT_EQ("1", recordText(0));
  }
}

TEST_P(ObjectArrayTest, LowerBoundIsRespected) {
  EXPECT_OK(put(objects({element(L"1"), element(L"2")}, 7)));
  EXPECT_EQ("1", recordText(0));
  EXPECT_EQ("2", recordText(1));
  EXPECT_OK(put(objects({element(L"3"), element(L"4")}, -1)));
  EXPECT_EQ("4", recordText(1));
}

TEST_P(ObjectArrayTest, EmptyClears) {
  EXPECT_OK(put(objects({element(L"1")})));
  EXPECT_OK(put(Variant()));
  EXPECT_EQ(0u, kept().size());
  EXPECT_EQ(0, recordCount());
  EXPECT_EQ(0u, record().pointer(GetParam().pointerOffset));
}

TEST_P(ObjectArrayTest, EmptyByReferenceClears) {
  EXPECT_OK(put(objects({element(L"1")})));
  Variant empty;
  EXPECT_OK(put(byRef(empty)));
  EXPECT_EQ(0, recordCount());
}

TEST_P(ObjectArrayTest, ArrayWithoutElementsClears) {
  EXPECT_OK(put(objects({element(L"1")})));
  EXPECT_OK(put(objects({})));
  EXPECT_EQ(0u, kept().size());
  EXPECT_EQ(0, recordCount());
}

TEST_P(ObjectArrayTest, DimensionWithoutElementsClears) {
  EXPECT_OK(put(manyDimensions(VT_DISPATCH, {{0, 0}, {3, 0}})));
  EXPECT_EQ(0, recordCount());
}

TEST_P(ObjectArrayTest, LaterArrayReplacesTheEarlier) {
  Ptr<IDispatch> earlier = element(L"1");
  EXPECT_OK(put(objects({earlier, element(L"2")})));
  EXPECT_OK(put(objects({element(L"3")})));
  EXPECT_EQ(1u, earlier.references());
  EXPECT_EQ(1, recordCount());
  EXPECT_EQ("3", recordText(0));
}

TEST_P(ObjectArrayTest, NullElementIsANullReference) {
  EXPECT_OK(put(objects({element(L"1"), nullptr})));
  ASSERT_EQ(2u, kept().size());
  EXPECT_EQ(nullptr, kept()[1].get());
  EXPECT_EQ(2, recordCount());
}

TEST_P(ObjectArrayTest, LaterChangeOfAnElementLeavesNoFreedPointer) {
  Ptr<IDispatch> held = element(L"before");
  EXPECT_OK(put(objects({held})));
  if (Ptr<IPolicy> typed = held.as<IPolicy>()) {
    EXPECT_OK(typed->put_oid(Bstr(kLonger)));
  }
  if (Ptr<IExtension> typed = held.as<IExtension>()) {
    EXPECT_OK(typed->put_oid(Bstr(kLonger)));
  }
  if (Ptr<ICertificate> typed = held.as<ICertificate>()) {
    EXPECT_OK(typed->put_subject(Bstr(kLonger)));
  }
  EXPECT_EQ(std::string(200, 'x'), recordText(0));
}

TEST_P(ObjectArrayTest, OtherTypesAreRefused) {
  expectRefused(Variant::text(L"x"));
  expectRefused(Variant::null());
  expectRefused(bytes({1}));
  expectRefused(strings({L"x"}));
  expectRefused(Variant::object(element(L"x")));
  expectRefused(manyDimensions(VT_UNKNOWN, {{1, 0}}));
}

TEST_P(ObjectArrayTest, ScriptArrayOfVariantsIsForReceiversOnly) {
  if (GetParam().takesVariants) return;
  expectRefused(variants({Variant::object(element(L"x"))}));
  Variant array = variants({Variant::object(element(L"x"))});
  expectRefused(byRefArray(array));
}

TEST_P(ObjectArrayTest, NullReferencesAreRefused) {
  expectRefused(nullRef(VT_VARIANT));
  expectRefused(nullRef(kObjectArray));
}

TEST_P(ObjectArrayTest, ForeignElementIsRefusedUntouched) {
  ForeignObject foreign;
  EXPECT_HR(E_INVALIDARG, put(objects({element(L"1"), foreign})));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_OK(put(Variant()));
  EXPECT_EQ(1, foreign.references());
}

TEST_P(ObjectArrayTest, ElementOfAnotherClassOfTheModuleIsRefused) {
  Ptr<IDispatch> wrong = make<SignParam>().as<IDispatch>();
  EXPECT_HR(E_INVALIDARG, put(objects({wrong})));
  EXPECT_OK(put(Variant()));
  EXPECT_EQ(1u, wrong.references());
}

TEST_P(ObjectArrayTest, RefusedElementChangesNothing) {
  ForeignObject foreign;
  expectRefused(objects({element(L"1"), foreign}));
  expectRefused(objects({make<SignParam>().as<IDispatch>()}));
}

TEST_P(ObjectArrayTest, OnlyOneLevelOfReferenceIsFollowed) {
  Variant given = objects({element(L"1")});
  Variant reference = byRef(given);
  expectRefused(byRef(reference));
}

TEST_P(ObjectArrayTest, ArrayThatHoldsAnotherTypeIsRefused) {
  Variant given = strings({L"x"});
  V_VT(given.out()) = kObjectArray;
  expectRefused(given);
  V_VT(given.out()) = kStringArray;
}

TEST_P(ObjectArrayTest, ArrayThatCannotBeLockedLeavesNullReferences) {
  Ptr<IDispatch> former = element(L"former");
  EXPECT_OK(put(objects({former})));
  Variant given = objects({element(L"1"), element(L"2")});
  given.safeArray()->cLocks = 0xFFFF;
  EXPECT_HR(E_UNEXPECTED, put(given));
  given.safeArray()->cLocks = 0;
  EXPECT_EQ(1u, former.references());
  ASSERT_EQ(2u, kept().size());
  EXPECT_EQ(nullptr, kept()[0].get());
  EXPECT_EQ(2, recordCount());
}

TEST_P(ObjectArrayTest, FormerObjectsAreGoneWhenThereIsNoMemory) {
  Ptr<IDispatch> former = element(L"former");
  EXPECT_OK(put(objects({former})));
  Variant given = objects({element(L"1")});
  Module::get().failAllocation(0);
  EXPECT_HR(E_OUTOFMEMORY, put(given));
  EXPECT_EQ(1u, former.references());
  EXPECT_EQ(0, recordCount());
}

TEST_P(ObjectArrayTest, EveryAllocationFailureIsReported) {
  Variant given = objects({element(L"1"), element(L"2")});
  for (int succeeding = 0; succeeding < 20; ++succeeding) {
    Module::get().failAllocation(succeeding);
    const HRESULT result = put(given);
    const bool failed = Module::get().allocationFailed();
    Module::get().failAllocation(-1);
    if (!failed) {
      EXPECT_GE(succeeding, 1);
      return;
    }
    EXPECT_HR(E_OUTOFMEMORY, result) << succeeding;
    Variant value;
    EXPECT_OK(get(value));
    EXPECT_OK(put(Variant()));
  }
  FAIL() << "never succeeded";
}

TEST_P(ObjectArrayTest, ArrayThatCannotBeCreatedLeavesTheVariant) {
  EXPECT_OK(put(objects({element(L"1")})));
  Variant value = Variant::number(77);
  MallocSpy::get().failAllocation(0);
  EXPECT_HR(E_OUTOFMEMORY, get(value));
  EXPECT_EQ(VT_I4, value.type());
}

TEST_P(ObjectArrayTest, NullPointerForTheValueIsRefused) {
  Ptr<IDispatch> object = GetParam().make();
  EXPECT_HR(E_POINTER, GetParam().get(object, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Properties, ObjectArrayTest,
                         ::testing::Values(ROW(VerifyParam, policies, 20, 24, 32, policy, 0, false),
                                           ROW(VerifyParam, extensions, 48, 56, 32, extension, 0, false),
                                           ROW(Certificate, policies, 328, 336, 32, policy, 0, false),
                                           ROW(Certificate, extensions, 360, 368, 32, extension, 0, false),
                                           ROW(EncryptParam, Receivers, 16, 24, 408, receiver, 24, true)),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
