// The count of bytes that a decryption stream has not consumed.
#include "support/operations.h"

namespace {

class StreamLeftTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  void SetUp() override { reply().left = 0x01020304; }
  HRESULT run(VARIANT* left) { return GetParam().call(objects, left); }
  fake::Reply& reply() { return engine().on(GetParam().function); }

  Objects objects{openQuivo()};
};

TEST_P(StreamLeftTest, ValueBecomesAnInteger) {
  Variant left;
  EXPECT_OK(run(left.out()));
  EXPECT_EQ(VT_I4, left.type());
  EXPECT_EQ(0x01020304, V_I4(&left.get()));
}

TEST_P(StreamLeftTest, CountIsPassedOnUnchanged) {
  Variant left;
  reply().left = -5;
  EXPECT_OK(run(left.out()));
  EXPECT_EQ(-5, V_I4(&left.get()));
}

TEST_P(StreamLeftTest, ValueIsOverwrittenWithoutBeingCleared) {
  Bstr kept(L"kept");
  VARIANT left;
  V_VT(&left) = VT_BSTR;
  V_BSTR(&left) = kept;
  EXPECT_OK(run(&left));
  EXPECT_EQ(VT_I4, V_VT(&left));
  EXPECT_EQ(L"kept", kept.text());
}

TEST_P(StreamLeftTest, ReferencedVariableIsUpdated) {
  LONG variable = 77;
  VARIANT left;
  V_VT(&left) = VT_BYREF | VT_I4;
  V_I4REF(&left) = &variable;
  EXPECT_OK(run(&left));
  EXPECT_EQ(0x01020304, variable);
  EXPECT_EQ(VT_BYREF | VT_I4, V_VT(&left));
}

TEST_P(StreamLeftTest, TypeOfAReferenceIsNotExamined) {
  LONG variable = 77;
  VARIANT left;
  V_VT(&left) = VT_BYREF | VT_UI4;
  V_I4REF(&left) = &variable;
  EXPECT_OK(run(&left));
  EXPECT_EQ(0x01020304, variable);
}

TEST_P(StreamLeftTest, ReferencedVariantBecomesAnInteger) {
  Variant variable, left = ByRef(variable);
  EXPECT_OK(run(left.out()));
  EXPECT_EQ(VT_I4, variable.type());
  EXPECT_EQ(0x01020304, V_I4(&variable.get()));
  EXPECT_EQ(VT_BYREF | VT_VARIANT, left.type());
}

TEST_P(StreamLeftTest, NullReferencesAreRefused) {
  for (VARTYPE type : {VT_I4, VT_VARIANT}) {
    Variant left = NullRef(type);
    EXPECT_HR(kInvalidArgument, run(left.out()));
  }
}

TEST_P(StreamLeftTest, CountIsWrittenThoughTheEngineFails) {
  Variant left;
  reply().result = 0x19;
  EXPECT_HR(0xE0690019, run(left.out()));
  EXPECT_EQ(VT_I4, left.type());
  EXPECT_EQ(0x01020304, V_I4(&left.get()));
}

TEST_P(StreamLeftTest, NullPointerIsRefusedWithoutTheEngine) {
  EXPECT_HR(kInvalidArgument, run(nullptr));
  EXPECT_EQ(0u, engine().count(GetParam().function));
}

INSTANTIATE_TEST_SUITE_P(Methods, StreamLeftTest, ::testing::ValuesIn(OutputsOf(Output::kNumber)),
                         NameOfRow<OperationArgument>);

}  // namespace
