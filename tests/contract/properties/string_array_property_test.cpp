// Properties that are arrays of strings.
#include "contract/properties/properties.h"
#include "support/malloc_spy.h"

namespace {

using Texts = std::vector<std::wstring>;

class StringArrayPropertyTest : public ContractTest, public ::testing::WithParamInterface<VariantProperty> {
 protected:
  void SetUp() override { object_ = GetParam().make(); }
  HRESULT get(Variant& value) { return GetParam().get(object_, value.out()); }
  HRESULT put(VARIANT value) { return GetParam().put(object_, value); }
  Texts kept() {
    Variant value = Variant::text(L"before");
    EXPECT_OK(get(value));
    return stringsOf(value);
  }
  fake::Snapshot record() { return GetParam().record(object_); }
  int32_t recordCount() { return record().i32(GetParam().countOffset); }
  std::string recordText(size_t index) { return record().at(GetParam().pointerOffset).text(8 * index); }
  void expectRefused(VARIANT other) {
    EXPECT_OK(put(strings({L"kept"})));
    EXPECT_HR(E_INVALIDARG, put(other));
    EXPECT_EQ((Texts{L"kept"}), kept());
  }

 private:
  Ptr<IDispatch> object_;
};

TEST_P(StringArrayPropertyTest, NewObjectHasAnEmptyArray) {
  EXPECT_EQ(Texts{}, kept());
  EXPECT_EQ(0, recordCount());
  EXPECT_EQ(0u, record().pointer(GetParam().pointerOffset));
}

TEST_P(StringArrayPropertyTest, StringsAreKeptInOrder) {
  EXPECT_OK(put(strings({L"1.2.3", L"сервер", L""})));
  EXPECT_EQ((Texts{L"1.2.3", L"сервер", L""}), kept());
}

TEST_P(StringArrayPropertyTest, EngineReadsAnsiTexts) {
  EXPECT_OK(put(strings({L"one", L"\x0431"})));
  EXPECT_EQ(2, recordCount());
  EXPECT_EQ("one", recordText(0));
  EXPECT_EQ("\xE1", recordText(1));
}

TEST_P(StringArrayPropertyTest, ArraysByReferenceAreAccepted) {
  Variant given = strings({L"one"});
  Variant reference = byRefArray(given);
  for (const VARIANT& form : {reference.get(), byRef(given).get(), byRef(reference).get()}) {
    EXPECT_OK(put(Variant()));
    EXPECT_OK(put(form));
    EXPECT_EQ((Texts{L"one"}), kept());
  }
}

TEST_P(StringArrayPropertyTest, LowerBoundIsRespected) {
  EXPECT_OK(put(strings({L"one", L"two"}, 5)));
  EXPECT_EQ((Texts{L"one", L"two"}), kept());
  EXPECT_OK(put(strings({L"one", L"two"}, -1)));
  EXPECT_EQ((Texts{L"one", L"two"}), kept());
}

TEST_P(StringArrayPropertyTest, EmptyClears) {
  EXPECT_OK(put(strings({L"one"})));
  EXPECT_OK(put(Variant()));
  EXPECT_EQ(Texts{}, kept());
  EXPECT_EQ(0, recordCount());
}

TEST_P(StringArrayPropertyTest, EmptyByReferenceClears) {
  EXPECT_OK(put(strings({L"one"})));
  Variant empty;
  EXPECT_OK(put(byRef(empty)));
  EXPECT_EQ(Texts{}, kept());
}

TEST_P(StringArrayPropertyTest, ArrayWithoutElementsClears) {
  EXPECT_OK(put(strings({L"one"})));
  EXPECT_OK(put(strings({})));
  EXPECT_EQ(Texts{}, kept());
  EXPECT_EQ(0, recordCount());
}

TEST_P(StringArrayPropertyTest, DimensionWithoutElementsClears) {
  EXPECT_OK(put(strings({L"one"})));
  EXPECT_OK(put(manyDimensions(VT_BSTR, {{0, 0}, {3, 0}})));
  EXPECT_EQ(0, recordCount());
}

TEST_P(StringArrayPropertyTest, ShorterArrayReplacesALongerOne) {
  EXPECT_OK(put(strings({L"one", L"two", L"three"})));
  EXPECT_OK(put(strings({L"four"})));
  EXPECT_EQ((Texts{L"four"}), kept());
}

TEST_P(StringArrayPropertyTest, ScriptArrayOfVariantsIsRefused) {
  expectRefused(variants({Variant::text(L"one")}));
  Variant array = variants({Variant::text(L"one")});
  expectRefused(byRefArray(array));
}

TEST_P(StringArrayPropertyTest, OtherTypesAreRefused) {
  expectRefused(Variant::text(L"one"));
  expectRefused(Variant::null());
  expectRefused(bytes({1}));
}

TEST_P(StringArrayPropertyTest, OnlyOneLevelOfReferenceIsFollowed) {
  Variant given = strings({L"one"});
  Variant reference = byRef(given);
  expectRefused(byRef(reference));
}

TEST_P(StringArrayPropertyTest, NullReferencesAreRefused) {
  expectRefused(nullRef(VT_VARIANT));
  expectRefused(nullRef(kStringArray));
}

TEST_P(StringArrayPropertyTest, NullStringStopsTheAssignment) {
  EXPECT_OK(put(strings({L"former"})));
  EXPECT_HR(kUnmappedInvalidParameter, put(strings({L"one", nullptr, L"three"})));
  EXPECT_EQ((Texts{L"one", L"", L""}), kept());
  EXPECT_EQ(3, recordCount());
}

TEST_P(StringArrayPropertyTest, ArrayThatCannotBeLockedLeavesEmptyTexts) {
  EXPECT_OK(put(strings({L"former"})));
  Variant given = strings({L"one", L"two"});
  given.safeArray()->cLocks = 0xFFFF;
  EXPECT_HR(E_UNEXPECTED, put(given));
  given.safeArray()->cLocks = 0;
  EXPECT_EQ((Texts{L"", L""}), kept());
}

TEST_P(StringArrayPropertyTest, ArrayThatHoldsAnotherTypeIsRefused) {
  Variant given = objects({nullptr});
  V_VT(given.out()) = kStringArray;
  expectRefused(given);
  V_VT(given.out()) = kObjectArray;
}

TEST_P(StringArrayPropertyTest, ObjectStaysUsableAfterAStoppedAssignment) {
  EXPECT_HR(kUnmappedInvalidParameter, put(strings({L"one", nullptr})));
  Variant value;
  EXPECT_OK(get(value));
  EXPECT_OK(put(strings({L"two"})));
  EXPECT_EQ((Texts{L"two"}), kept());
}

TEST_P(StringArrayPropertyTest, EveryAllocationFailureIsReported) {
  Variant given = strings({L"one", L"two"});
  for (int succeeding = 0; succeeding < 20; ++succeeding) {
    EXPECT_OK(put(strings({L"before"})));
    Module::get().failAllocation(succeeding);
    const HRESULT result = put(given);
    const bool failed = Module::get().allocationFailed();
    Module::get().failAllocation(-1);
    if (!failed) {
      EXPECT_GE(succeeding, 3) << "an array and two strings";
      return;
    }
    EXPECT_HR(E_OUTOFMEMORY, result) << succeeding;
    Variant value;
    EXPECT_OK(get(value));
  }
  FAIL() << "never succeeded";
}

TEST_P(StringArrayPropertyTest, ArrayThatCannotBeCreatedLeavesTheVariant) {
  EXPECT_OK(put(strings({L"one", L"two"})));
  for (long succeeding = 0;; ++succeeding) {
    Variant value = Variant::number(77);
    MallocSpy::get().failAllocation(succeeding);
    const HRESULT result = get(value);
    const bool failed = MallocSpy::get().allocationFailed();
    MallocSpy::get().failAllocation(-1);
    if (!failed) {
      EXPECT_GE(succeeding, 3) << "an array and a copy of each string";
      break;
    }
    EXPECT_HR(E_OUTOFMEMORY, result) << succeeding;
    EXPECT_EQ(VT_I4, value.type()) << succeeding;
  }
}

TEST_P(StringArrayPropertyTest, ReadingThatCannotAllocateLeavesTheVariant) {
  EXPECT_OK(put(strings({L"one", L"two"})));
  for (int succeeding = 0; succeeding < 2; ++succeeding) {
    Variant value = Variant::number(77);
    Module::get().failAllocation(succeeding);
    EXPECT_HR(E_OUTOFMEMORY, get(value));
    Module::get().failAllocation(-1);
    EXPECT_EQ(VT_I4, value.type());
  }
}

TEST_P(StringArrayPropertyTest, NullPointerForTheValueIsRefused) {
  Ptr<IDispatch> object = GetParam().make();
  EXPECT_HR(E_POINTER, GetParam().get(object, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Properties, StringArrayPropertyTest, ::testing::ValuesIn(stringArrayProperties()),
                         nameOfProperty<VariantProperty>);

}  // namespace
