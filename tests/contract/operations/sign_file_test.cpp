// Signing files by path.
#include "support/operations.h"

namespace {

class SignFileTest : public ContractTest, public ::testing::WithParamInterface<Operation> {
 protected:
  HRESULT sign(BSTR data, BSTR signIn, BSTR signOut) {
    return GetParam().call(Objects(openQuivo()), {{0, param}, {1, data}, {2, signIn}, {3, signOut}});
  }
  const fake::Call& call() { return engine().only(GetParam().function); }

  Ptr<ISignParam> param = Make<ISignParam>();
};

TEST_P(SignFileTest, PathsReachTheEngineInOrder) {
  EXPECT_OK(param->put_flag(Flag_Sign_Detached));
  EXPECT_OK(sign(Bstr(L"data"), Bstr(L"in"), Bstr(L"out")));
  EXPECT_EQ(2u, call().record(1).u32(0));
  EXPECT_EQ("data", call().text(2));
  EXPECT_EQ("in", call().text(3));
  EXPECT_EQ("out", call().text(4));
}

TEST_P(SignFileTest, NullPathsOfDataAndSignatureAreNoFiles) {
  EXPECT_OK(sign(nullptr, nullptr, Bstr(L"out")));
  EXPECT_TRUE(call().null(2));
  EXPECT_TRUE(call().null(3));
}

TEST_P(SignFileTest, NullOutputPathIsRefusedWithoutTheEngine) {
  EXPECT_HR(kInvalidArgument, sign(Bstr(L"data"), nullptr, nullptr));
  EXPECT_EQ(0u, engine().count(GetParam().function));
}

TEST_P(SignFileTest, OnlyThisFunctionIsCalled) {
  EXPECT_OK(sign(Bstr(L"data"), nullptr, Bstr(L"out")));
  EXPECT_EQ((std::vector<std::string>{GetParam().function, "QUIVO_Uninitialize"}), engine().names());
}

INSTANTIATE_TEST_SUITE_P(Methods, SignFileTest, ::testing::ValuesIn(OperationsEnding("SignFile")),
                         NameOfRow<Operation>);

}  // namespace
