// Byte VARIANTs, as far as they need no engine buffer.
#include "convert/bytes.h"

#include <gtest/gtest.h>

#include "com/variant.h"

using namespace convert;

namespace {

/// A VARIANT of `type` that holds a new array of `count` elements of `element`.
struct ArrayVariant {
  ArrayVariant(VARTYPE element, ULONG count) {
    V_VT(value.inOut()) = static_cast<VARTYPE>(VT_ARRAY | element);
    V_ARRAY(value.inOut()) = SafeArrayCreateVector(element, 0, count);
  }
  SAFEARRAY* array() const { return V_ARRAY(&value.get()); }
  com::Variant value;
};

ArrayVariant VbsBytes(std::initializer_list<uint8_t> bytes) {
  ArrayVariant made(VT_VARIANT, static_cast<ULONG>(bytes.size()));
  VARIANT* element = static_cast<VARIANT*>(made.array()->pvData);
  for (uint8_t byte : bytes) {
    V_VT(element) = VT_UI1;
    V_UI1(element++) = byte;
  }
  return made;
}

TEST(ReadByteVariant, ReadsAnEmptyVariantAsNoBytes) {
  ByteInput input;
  ASSERT_EQ(ReadByteVariant(VARIANT{}, input), S_OK);
  EXPECT_EQ(input.blob()->len, 0u);
  EXPECT_EQ(input.blob()->data, nullptr);
  EXPECT_FALSE(input.isGiven());
}

TEST(ReadByteVariant, ShowsAByteArrayInPlace) {
  ArrayVariant bytes(VT_UI1, 3);
  ByteInput input;
  ASSERT_EQ(ReadByteVariant(bytes.value.get(), input), S_OK);
  EXPECT_EQ(input.blob()->data, bytes.array()->pvData);
  EXPECT_EQ(input.blob()->len, 3u);
  EXPECT_FALSE(input.isVbsForm());
}

TEST(ReadByteVariant, HoldsTheLockOfAByteArrayUntilItIsReleased) {
  ArrayVariant bytes(VT_UI1, 3);
  ByteInput input;
  ASSERT_EQ(ReadByteVariant(bytes.value.get(), input), S_OK);
  EXPECT_EQ(bytes.array()->cLocks, 1u);
  EXPECT_EQ(input.release(), S_OK);
  EXPECT_EQ(bytes.array()->cLocks, 0u);
}

TEST(ReadByteVariant, CopiesAnArrayOfVariantsAndUnlocksItAtOnce) {
  ArrayVariant bytes = VbsBytes({7, 8});
  ByteInput input;
  ASSERT_EQ(ReadByteVariant(bytes.value.get(), input), S_OK);
  EXPECT_EQ(bytes.array()->cLocks, 0u);
  EXPECT_EQ(input.blob()->len, 2u);
  EXPECT_EQ(input.blob()->data[1], 8);
  EXPECT_TRUE(input.isVbsForm());
}

TEST(ReadByteVariant, KnowsTheFormOfAnEmptyArrayOfVariants) {
  ByteInput input;
  ASSERT_EQ(ReadByteVariant(VbsBytes({}).value.get(), input), S_OK);
  EXPECT_TRUE(input.isVbsForm());
}

TEST(ReadByteVariant, RefusesAnElementThatIsNoByteAndLeavesTheArrayUnlocked) {
  ArrayVariant bytes = VbsBytes({7, 8});
  V_VT(static_cast<VARIANT*>(bytes.array()->pvData) + 1) = VT_I2;
  ByteInput input;
  EXPECT_EQ(ReadByteVariant(bytes.value.get(), input), E_INVALIDARG);
  EXPECT_EQ(bytes.array()->cLocks, 0u);
}

TEST(ReadByteVariant, FollowsAReferenceToAVariantOneLevelOnly) {
  ArrayVariant bytes(VT_UI1, 3);
  VARIANT once{};
  V_VT(&once) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&once) = bytes.value.inOut();
  VARIANT twice{};
  V_VT(&twice) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&twice) = &once;
  ByteInput input;
  EXPECT_EQ(ReadByteVariant(once, input), S_OK);
  ByteInput other;
  EXPECT_EQ(ReadByteVariant(twice, other), E_INVALIDARG);
}

TEST(ReadByteVariant, RefusesTextsNumbersAndNull) {
  for (int type : {+VT_NULL, +VT_I4, +VT_BSTR, +VT_UI1, +VT_DISPATCH, +VT_ERROR, VT_ARRAY | VT_I1, VT_ARRAY | VT_I2}) {
    VARIANT value{};
    V_VT(&value) = static_cast<VARTYPE>(type);
    ByteInput input;
    EXPECT_EQ(ReadByteVariant(value, input), E_INVALIDARG) << type;
  }
}

TEST(ReadByteVariant, RefusesAnArrayWhoseElementsAreNotWhatTheTypeSays) {
  ArrayVariant numbers(VT_I4, 3);
  V_VT(numbers.value.inOut()) = VT_ARRAY | VT_VARIANT;
  ByteInput input;
  EXPECT_EQ(ReadByteVariant(numbers.value.get(), input), E_INVALIDARG);
  V_VT(numbers.value.inOut()) = VT_ARRAY | VT_I4;
}

TEST(CopyToByteArray, MakesAnArrayFromZero) {
  uint8_t data[] = {1, 2, 3};
  com::Variant out;
  ASSERT_EQ(CopyToByteArray({3, data}, out.inOut()), S_OK);
  ASSERT_EQ(out.type(), VT_ARRAY | VT_UI1);
  EXPECT_EQ(V_ARRAY(&out.get())->rgsabound[0].lLbound, 0);
  EXPECT_EQ(static_cast<uint8_t*>(V_ARRAY(&out.get())->pvData)[2], 3);
}

TEST(CopyToByteArray, MakesNothingOfNoBytes) {
  com::Variant out;
  out.reset(SysAllocString(L"before"));
  ASSERT_EQ(CopyToByteArray({0, nullptr}, out.inOut()), S_OK);
  EXPECT_EQ(out.type(), VT_EMPTY);
}

}  // namespace
