// Numbers and flags: stored as given and handed to the engine unchanged.
#include "contract/properties/properties.h"

namespace {

class NumberPropertyTest : public ContractTest, public ::testing::WithParamInterface<NumberProperty> {};

TEST_P(NumberPropertyTest, NewObjectHasZero) {
  Ptr<IDispatch> object = GetParam().make();
  int32_t value = 77;
  EXPECT_OK(GetParam().get(object, &value));
  EXPECT_EQ(0, value);
  EXPECT_EQ(0, GetParam().record(object).i32(GetParam().offset));
}

TEST_P(NumberPropertyTest, AnyValueIsKeptAndReachesTheEngine) {
  Ptr<IDispatch> object = GetParam().make();
  for (int32_t given : {1, -1, INT32_MIN, INT32_MAX, 0x12345678}) {
    int32_t value = 0;
    EXPECT_OK(GetParam().put(object, given));
    EXPECT_OK(GetParam().get(object, &value));
    EXPECT_EQ(given, value);
    EXPECT_EQ(given, GetParam().record(object).i32(GetParam().offset));
  }
}

TEST_P(NumberPropertyTest, OtherFieldsOfTheRecordStay) {
  Ptr<IDispatch> object = GetParam().make();
  fake::Snapshot before = GetParam().record(object);
  EXPECT_OK(GetParam().put(object, -1));
  fake::Snapshot after = GetParam().record(object);
  for (size_t i = 0; i < 4; ++i) before.bytes[GetParam().offset + i] = after.bytes[GetParam().offset + i] = 0;
  EXPECT_EQ(before.bytes, after.bytes);
}

TEST_P(NumberPropertyTest, NullPointerForTheValueIsRefused) {
  Ptr<IDispatch> object = GetParam().make();
  EXPECT_HR(E_POINTER, GetParam().get(object, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Properties, NumberPropertyTest, ::testing::ValuesIn(numberProperties()),
                         nameOfProperty<NumberProperty>);

}  // namespace
