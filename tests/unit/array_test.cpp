// How callers' arrays are looked at.
#include "com/array.h"

#include <gtest/gtest.h>

#include "com/variant.h"

namespace {

com::Array Bytes(ULONG count, LONG lowerBound = 0) {
  return com::Array(SafeArrayCreateVector(VT_UI1, lowerBound, count));
}

com::Array Matrix(ULONG first, ULONG second) {
  SAFEARRAYBOUND bounds[] = {{first, 0}, {second, 0}};
  return com::Array(SafeArrayCreate(VT_UI1, 2, bounds));
}

TEST(ElementCount, IsThatOfTheOnlyBound) { EXPECT_EQ(com::ElementCount(Bytes(5).get()), 5u); }

TEST(ElementCount, DoesNotLookAtTheLowerBound) { EXPECT_EQ(com::ElementCount(Bytes(5, -7).get()), 5u); }

TEST(ElementCount, IsThatOfTheFirstBoundRecord) {
  com::Array array = Matrix(2, 3);
  EXPECT_EQ(com::ElementCount(array.get()), array.get()->rgsabound[0].cElements);
}

TEST(ElementCount, IsZeroWhenAnyDimensionIsEmpty) {
  EXPECT_EQ(com::ElementCount(Matrix(0, 3).get()), 0u);
  EXPECT_EQ(com::ElementCount(Matrix(3, 0).get()), 0u);
}

TEST(Holds, LooksAtTheTypeAndTheSize) {
  com::Array array = Bytes(1);
  EXPECT_TRUE(com::Holds(array.get(), VT_UI1, 1));
  EXPECT_FALSE(com::Holds(array.get(), VT_I1, 1));
  EXPECT_FALSE(com::Holds(array.get(), VT_UI1, 2));
}

TEST(ArrayView, LocksTheArrayAndUnlocksIt) {
  com::Array array = Bytes(3);
  {
    com::ArrayView<uint8_t> view;
    ASSERT_EQ(view.lock(array.get()), S_OK);
    EXPECT_EQ(array.get()->cLocks, 1u);
  }
  EXPECT_EQ(array.get()->cLocks, 0u);
}

TEST(ArrayOf, AcceptsAnArrayByValueAndByReference) {
  com::Array array = Bytes(1);
  SAFEARRAY* held = array.get();
  VARIANT value{};
  SAFEARRAY* found = nullptr;
  V_VT(&value) = VT_ARRAY | VT_UI1;
  V_ARRAY(&value) = held;
  EXPECT_EQ(com::ArrayOf(value, VT_UI1, &found), S_OK);
  V_VT(&value) = VT_BYREF | VT_ARRAY | VT_UI1;
  V_ARRAYREF(&value) = &held;
  EXPECT_EQ(com::ArrayOf(value, VT_UI1, &found), S_OK);
  EXPECT_EQ(found, held);
}

TEST(ArrayOf, RefusesNullArraysAndNullReferences) {
  VARIANT value{};
  SAFEARRAY* found = nullptr;
  V_VT(&value) = VT_ARRAY | VT_UI1;
  EXPECT_EQ(com::ArrayOf(value, VT_UI1, &found), E_INVALIDARG);
  V_VT(&value) = VT_BYREF | VT_ARRAY | VT_UI1;
  EXPECT_EQ(com::ArrayOf(value, VT_UI1, &found), E_INVALIDARG);
}

}  // namespace
