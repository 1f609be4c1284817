// Properties that are arrays, of bytes, strings or objects: what holds for all of them.
#include "contract/properties/arrays.h"
#include "support/import_patch.h"
#include "support/malloc_spy.h"

namespace {

class ArrayPropertyTest : public ArrayTest {
 protected:
  void expectRefused(const VARIANT& other) {
    put(given({1, 2}));
    EXPECT_HR(E_INVALIDARG, tryPut(other));
    EXPECT_EQ(contentOf({1, 2}), kept());
    EXPECT_EQ(contentOf({1, 2}), recorded());
  }
};

TEST_P(ArrayPropertyTest, NewObjectHasNoElements) {
  EXPECT_EQ(Content{}, kept());
  EXPECT_EQ(0, recordCount());
  EXPECT_EQ(0u, recordPointer());
}

TEST_P(ArrayPropertyTest, ElementsAreKeptInOrderAndReachTheEngine) {
  put(given({1, 0, 2}));
  EXPECT_EQ(contentOf({1, 0, 2}), kept());
  EXPECT_EQ(contentOf({1, 0, 2}), recorded());
  EXPECT_EQ(3, recordCount());
}

TEST_P(ArrayPropertyTest, LaterArrayReplacesALongerOne) {
  put(given({1, 2, 3}));
  put(given({4}));
  EXPECT_EQ(contentOf({4}), kept());
  EXPECT_EQ(contentOf({4}), recorded());
}

TEST_P(ArrayPropertyTest, ArraysByReferenceAreAccepted) {
  Variant array = given({3});
  Variant reference = ByRefArray(array);
  for (const VARIANT& form : {reference.get(), ByRef(array).get(), ByRef(reference).get()}) {
    put(Variant());
    put(form);
    EXPECT_EQ(contentOf({3}), kept());
  }
}

TEST_P(ArrayPropertyTest, AnyLowerBoundIsAccepted) {
  for (LONG bound : {5, -1}) {
    put(given({3, 4}, bound));
    EXPECT_EQ(contentOf({3, 4}), kept());
    EXPECT_EQ(contentOf({3, 4}), recorded());
  }
}

TEST_P(ArrayPropertyTest, NothingClears) {
  Variant nothing;
  for (const VARIANT& empty : {nothing.get(), ByRef(nothing).get()}) {
    put(given({1, 2}));
    put(empty);
    EXPECT_EQ(Content{}, kept());
    EXPECT_EQ(0, recordCount());
    EXPECT_EQ(0u, recordPointer());
  }
}

TEST_P(ArrayPropertyTest, ArrayWithoutElementsClears) {
  for (const Variant& empty :
       {given({}), ManyDimensions(elementType(), {{0, 0}, {3, 0}}), ManyDimensions(elementType(), {{3, 0}, {0, 0}}),
        ManyDimensions(elementType(), {{2, 0}, {0, 0}, {3, 0}})}) {
    put(given({1, 2}));
    put(empty);
    EXPECT_EQ(Content{}, kept());
    EXPECT_EQ(0, recordCount());
  }
}

TEST_P(ArrayPropertyTest, FirstBoundRecordOfTwoDimensionsGivesTheCount) {
  put(grid());
  EXPECT_EQ(contentOf({1, 2, 3}), kept());
  EXPECT_EQ(3, recordCount());
}

TEST_P(ArrayPropertyTest, OtherTypesAreRefused) {
  expectRefused(Variant::text(L"x"));
  expectRefused(Variant::null());
  expectRefused(Variant::number(1));
  expectRefused(Variant::object(Make<IPolicy>()));
  for (VARTYPE type : {VT_UI1, VT_I2, VT_BSTR, VT_DISPATCH, VT_UNKNOWN}) {
    if (type != elementType()) expectRefused(ManyDimensions(type, {{1, 0}}));
  }
}

TEST_P(ArrayPropertyTest, OnlyOneLevelOfReferenceIsFollowed) {
  Variant array = given({3});
  Variant reference = ByRef(array);
  expectRefused(ByRef(reference));
}

TEST_P(ArrayPropertyTest, NullReferencesAreRefused) {
  expectRefused(NullRef(VT_VARIANT));
  expectRefused(NullRef(static_cast<VARTYPE>(VT_ARRAY | elementType())));
  Variant nothing = Variant::array(elementType(), nullptr);
  expectRefused(nothing);
  expectRefused(ByRefArray(nothing));
}

TEST_P(ArrayPropertyTest, ArrayThatCannotBeLockedLeavesEmptyElements) {
  put(given({1}));
  Variant array = given({2, 3});
  array.safeArray()->cLocks = 0xFFFF;
  EXPECT_HR(E_UNEXPECTED, tryPut(array));
  array.safeArray()->cLocks = 0;
  // The former elements are gone by then.
  EXPECT_EQ(contentOf({kNoElement, kNoElement}), kept());
  EXPECT_EQ(2, recordCount());
}

TEST_P(ArrayPropertyTest, GivenArrayIsUnlockedAfterwards) {
  Variant array = given({3});
  put(array);
  EXPECT_EQ(0u, array.safeArray()->cLocks);
}

TEST_P(ArrayPropertyTest, FormerElementsAreGoneIfThereIsNoMemory) {
  put(given({1}));
  Variant array = given({2});
  Module::get().failAllocation(0);
  EXPECT_HR(E_OUTOFMEMORY, tryPut(array));
  EXPECT_EQ(Content{}, kept());
  EXPECT_EQ(0, recordCount());
}

TEST_P(ArrayPropertyTest, EveryAllocationFailureIsReported) {
  Variant array = given({1, 2});
  for (int succeeding = 0;; ++succeeding) {
    ASSERT_LT(succeeding, 20);
    put(given({3}));
    Module::get().failAllocation(succeeding);
    const HRESULT result = tryPut(array);
    const bool failed = Module::get().allocationFailed();
    Module::get().failAllocation(-1);
    if (!failed) {
      EXPECT_GE(succeeding, GetParam().content == "strings" ? 3 : 1) << "an array, and each string";
      break;
    }
    EXPECT_HR(E_OUTOFMEMORY, result) << succeeding;
    kept();
  }
  EXPECT_EQ(contentOf({1, 2}), kept());
}

TEST_P(ArrayPropertyTest, ReadingThatCannotAllocateLeavesTheVariant) {
  put(given({1, 2}));
  for (bool ofPlatform : {true, false}) {
    for (long succeeding = 0;; ++succeeding) {
      ASSERT_LT(succeeding, 20);
      Variant value = Variant::number(77);
      if (ofPlatform) MallocSpy::get().failAllocation(succeeding);
      if (!ofPlatform) Module::get().failAllocation(succeeding);
      const HRESULT result = tryGet(value);
      const bool failed = ofPlatform ? MallocSpy::get().allocationFailed() : Module::get().allocationFailed();
      MallocSpy::get().failAllocation(-1);
      Module::get().failAllocation(-1);
      if (!failed) {
        const bool strings = GetParam().content == "strings";
        EXPECT_GE(succeeding, ofPlatform ? (strings ? 3 : 1) : (strings ? 2 : 0)) << "an array, and each string";
        break;
      }
      EXPECT_HR(E_OUTOFMEMORY, result) << succeeding;
      EXPECT_EQ(VT_I4, value.type()) << succeeding;
    }
  }
}

TEST_P(ArrayPropertyTest, VariantThatCannotBeClearedIsReported) {
  LockedVariant locked;
  put(given({1}));
  EXPECT_HR(DISP_E_ARRAYISLOCKED, GetParam().get(object, &locked.value));
}

TEST_P(ArrayPropertyTest, NullPointerForTheValueIsRefused) { EXPECT_HR(E_POINTER, GetParam().get(object, nullptr)); }

INSTANTIATE_TEST_SUITE_P(Properties, ArrayPropertyTest, ::testing::ValuesIn(ArrayProperties()), NameOfProperty);

class ReferenceArrayTest : public ArrayPropertyTest {};

TEST_P(ReferenceArrayTest, ArrayThatHoldsAnotherTypeIsRefused) {
  Variant other = ManyDimensions(elementType() == VT_BSTR ? VT_DISPATCH : VT_BSTR, {{1, 0}});
  const VARTYPE actual = other.type();
  V_VT(other.out()) = static_cast<VARTYPE>(VT_ARRAY | elementType());
  expectRefused(other);
  V_VT(other.out()) = actual;
}

INSTANTIATE_TEST_SUITE_P(Properties, ReferenceArrayTest,
                         ::testing::ValuesIn(Where(ArrayProperties(),
                                                   [](const Property& row) { return row.content != "bytes"; })),
                         NameOfProperty);

/// An array of VARIANTs, as scripts make them, is for receivers only.
class ScriptArrayTest : public ArrayPropertyTest {};

TEST_P(ScriptArrayTest, IsRefused) {
  Variant element;
  V_VT(element.out()) = VT_UI1;
  if (elementType() == VT_BSTR) element = Variant::text(L"x");
  if (elementType() == VT_DISPATCH) element = Variant::object(Marked(GetParam().content, L"x"));
  Variant array = VariantArray({element});
  expectRefused(array);
  expectRefused(ByRefArray(array));
}

INSTANTIATE_TEST_SUITE_P(Properties, ScriptArrayTest,
                         ::testing::ValuesIn(Where(ArrayProperties(),
                                                   [](const Property& row) { return row.content != "ICertificate"; })),
                         NameOfProperty);

class StringArrayTest : public ArrayTest {};

TEST_P(StringArrayTest, NullStringStopsTheAssignment) {
  put(StringArray({L"former"}));
  EXPECT_HR(kUnmappedInvalidParameter, tryPut(StringArray({L"1", nullptr, L"3"})));
  EXPECT_EQ(contentOf({1, kNoElement, kNoElement}), kept());
  EXPECT_EQ(3, recordCount());
  put(StringArray({L"2"}));
  EXPECT_EQ(contentOf({2}), kept());
}

TEST_P(StringArrayTest, StringsAreKeptInTheAnsiCodePage) {
  put(StringArray({L"one", L"\x0431"}));
  EXPECT_EQ((Content{"one", "\xE1"}), kept());
  EXPECT_EQ((Content{"one", "\xE1"}), recorded());
}

INSTANTIATE_TEST_SUITE_P(Properties, StringArrayTest, ::testing::ValuesIn(ArrayProperties("strings")), NameOfProperty);

class ByteArrayTest : public ArrayTest {};

TEST_P(ByteArrayTest, EngineReadsACopy) {
  Variant array = ByteArray({9, 8});
  put(array);
  EXPECT_NE(reinterpret_cast<uintptr_t>(array.safeArray()->pvData), recordPointer());
}

TEST_P(ByteArrayTest, NoBytesReadAsEmpty) {
  put(ByteArray({}));
  Variant value = Variant::text(L"before");
  EXPECT_OK(tryGet(value));
  EXPECT_EQ(VT_EMPTY, value.type());
}

INSTANTIATE_TEST_SUITE_P(Properties, ByteArrayTest, ::testing::ValuesIn(ArrayProperties("bytes")), NameOfProperty);

}  // namespace
