// Byte properties: a plain byte array in and out, copied.
#include "contract/properties/properties.h"
#include "support/malloc_spy.h"

namespace {

class BytePropertyTest : public ContractTest, public ::testing::WithParamInterface<VariantProperty> {
 protected:
  void SetUp() override { object_ = GetParam().make(); }
  HRESULT get(Variant& value) { return GetParam().get(object_, value.out()); }
  HRESULT put(VARIANT value) { return GetParam().put(object_, value); }
  Variant value() {
    Variant value = Variant::text(L"before");
    EXPECT_OK(get(value));
    return value;
  }
  Bytes kept() { return plainBytesOf(value()); }
  fake::Snapshot record() { return GetParam().record(object_); }
  uint32_t recordCount() { return record().u32(GetParam().countOffset); }
  void expectRefused(VARIANT other) {
    EXPECT_OK(put(bytes({1, 2})));
    EXPECT_HR(E_INVALIDARG, put(other));
    EXPECT_EQ((Bytes{1, 2}), kept());
  }

 private:
  Ptr<IDispatch> object_;
};

TEST_P(BytePropertyTest, NewObjectHasNoBytes) {
  EXPECT_EQ(VT_EMPTY, value().type());
  EXPECT_EQ(0u, recordCount());
  EXPECT_EQ(0u, record().pointer(GetParam().pointerOffset));
}

TEST_P(BytePropertyTest, BytesAreKeptAndReadAsAPlainArray) {
  EXPECT_OK(put(bytes({1, 0, 255})));
  EXPECT_EQ((Bytes{1, 0, 255}), kept());
}

TEST_P(BytePropertyTest, EngineReadsACopy) {
  Variant given = bytes({9, 8});
  EXPECT_OK(put(given));
  EXPECT_EQ(2u, recordCount());
  EXPECT_EQ((Bytes{9, 8}), record().at(GetParam().pointerOffset).bytes);
  EXPECT_NE(reinterpret_cast<uintptr_t>(given.safeArray()->pvData), record().pointer(GetParam().pointerOffset));
}

TEST_P(BytePropertyTest, ArraysByReferenceAreAccepted) {
  Variant given = bytes({3});
  Variant reference = byRefArray(given);
  for (const VARIANT& form : {reference.get(), byRef(given).get(), byRef(reference).get()}) {
    EXPECT_OK(put(Variant()));
    EXPECT_OK(put(form));
    EXPECT_EQ((Bytes{3}), kept());
  }
}

TEST_P(BytePropertyTest, LowerBoundIsNotExamined) {
  EXPECT_OK(put(bytes({3, 4}, 10)));
  EXPECT_EQ((Bytes{3, 4}), kept());
}

TEST_P(BytePropertyTest, EmptyClears) {
  EXPECT_OK(put(bytes({3, 4})));
  EXPECT_OK(put(Variant()));
  EXPECT_EQ(VT_EMPTY, value().type());
  EXPECT_EQ(0u, record().pointer(GetParam().pointerOffset));
}

TEST_P(BytePropertyTest, EmptyByReferenceClears) {
  EXPECT_OK(put(bytes({3, 4})));
  Variant empty;
  EXPECT_OK(put(byRef(empty)));
  EXPECT_EQ(VT_EMPTY, value().type());
}

TEST_P(BytePropertyTest, ArrayWithoutElementsReadsAsEmpty) {
  EXPECT_OK(put(bytes({3, 4})));
  EXPECT_OK(put(bytes({})));
  EXPECT_EQ(VT_EMPTY, value().type());
  EXPECT_EQ(0u, recordCount());
}

TEST_P(BytePropertyTest, DimensionWithoutElementsReadsAsEmpty) {
  EXPECT_OK(put(manyDimensions(VT_UI1, {{0, 0}, {3, 0}})));
  EXPECT_EQ(VT_EMPTY, value().type());
}

TEST_P(BytePropertyTest, ArrayOfVariantsIsRefused) {
  expectRefused(vbsBytes({1}));
  Variant array = vbsBytes({1});
  expectRefused(byRefArray(array));
}

TEST_P(BytePropertyTest, OtherTypesAreRefused) {
  expectRefused(Variant::text(L"bytes"));
  expectRefused(Variant::null());
  expectRefused(Variant::number(1));
  expectRefused(strings({L"1"}));
}

TEST_P(BytePropertyTest, OnlyOneLevelOfReferenceIsFollowed) {
  Variant given = bytes({3});
  Variant reference = byRef(given);
  expectRefused(byRef(reference));
}

TEST_P(BytePropertyTest, NullReferencesAreRefused) {
  expectRefused(nullRef(VT_VARIANT));
  expectRefused(nullRef(kByteArray));
  Variant nothing = Variant::array(VT_UI1, nullptr);
  expectRefused(nothing);
  expectRefused(byRefArray(nothing));
}

TEST_P(BytePropertyTest, CopyThatCannotBeAllocatedLeavesNone) {
  EXPECT_OK(put(bytes({1, 2})));
  Variant given = bytes({3});
  Module::get().failAllocation(0);
  EXPECT_HR(0x8007000Eu, put(given));
  EXPECT_EQ(VT_EMPTY, value().type());
  EXPECT_EQ(0u, recordCount());
}

TEST_P(BytePropertyTest, ArrayThatCannotBeLockedIsReported) {
  EXPECT_OK(put(bytes({1, 2})));
  Variant given = bytes({3});
  given.safeArray()->cLocks = 0xFFFF;
  EXPECT_HR(E_UNEXPECTED, put(given));
  given.safeArray()->cLocks = 0;
  // The former bytes are gone by then.
  EXPECT_EQ(Bytes{0}, kept());
}

TEST_P(BytePropertyTest, VariantThatCannotBeClearedIsReported) {
  LockedVariant locked;
  Ptr<IDispatch> object = GetParam().make();
  EXPECT_OK(GetParam().put(object, bytes({1})));
  EXPECT_HR(DISP_E_ARRAYISLOCKED, GetParam().get(object, &locked.value));
}

TEST_P(BytePropertyTest, GivenArrayIsUnlockedAfterwards) {
  Variant given = bytes({3});
  EXPECT_OK(put(given));
  EXPECT_EQ(0u, given.safeArray()->cLocks);
}

TEST_P(BytePropertyTest, ReadingThatCannotAllocateLeavesTheVariant) {
  EXPECT_OK(put(bytes({1, 2})));
  Variant value = Variant::number(77);
  MallocSpy::get().failAllocation(0);
  EXPECT_HR(E_OUTOFMEMORY, get(value));
  EXPECT_EQ(VT_I4, value.type());
}

TEST_P(BytePropertyTest, NullPointerForTheValueIsRefused) {
  Ptr<IDispatch> object = GetParam().make();
  EXPECT_HR(E_POINTER, GetParam().get(object, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Properties, BytePropertyTest, ::testing::ValuesIn(byteProperties()),
                         nameOfProperty<VariantProperty>);

}  // namespace
