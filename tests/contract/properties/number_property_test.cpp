// Numbers and flags: stored as given and handed to the engine unchanged.
#include "contract/properties/properties.h"

namespace {

class NumberPropertyTest : public ContractTest, public ::testing::WithParamInterface<Property> {
 protected:
  int32_t get() {
    int32_t value = 77;
    EXPECT_OK(GetParam().get(object, &value));
    return value;
  }
  int32_t recorded() { return RecordOf(object).i32(GetParam().offset); }

  Ptr<IDispatch> object = GetParam().make();
};

TEST_P(NumberPropertyTest, NewObjectHasZero) {
  EXPECT_EQ(0, get());
  EXPECT_EQ(0, recorded());
}

TEST_P(NumberPropertyTest, AnyValueIsKeptAndReachesTheEngine) {
  for (int32_t given : {1, -1, INT32_MIN, INT32_MAX, 0x12345678}) {
    EXPECT_OK(GetParam().put(object, given));
    EXPECT_EQ(given, get());
    EXPECT_EQ(given, recorded());
  }
}

TEST_P(NumberPropertyTest, OtherFieldsOfTheRecordStay) {
  fake::Snapshot before = RecordOf(object);
  EXPECT_OK(GetParam().put(object, -1));
  fake::Snapshot after = RecordOf(object);
  for (size_t i = 0; i < 4; ++i) before.bytes[GetParam().offset + i] = after.bytes[GetParam().offset + i] = 0;
  EXPECT_EQ(before.bytes, after.bytes);
}

TEST_P(NumberPropertyTest, NullPointerForTheValueIsRefused) { EXPECT_HR(E_POINTER, GetParam().get(object, nullptr)); }

INSTANTIATE_TEST_SUITE_P(Properties, NumberPropertyTest, ::testing::ValuesIn(NumberProperties()), NameOfProperty);

}  // namespace
