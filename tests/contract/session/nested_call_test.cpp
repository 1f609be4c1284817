// Calls that arrive while the engine is at work: a host's messages may bring them at any moment.
#include "support/operations.h"

namespace {

class NestedCallTest : public ContractTest, public ::testing::WithParamInterface<Operation> {
 protected:
  /// The answer to the next call of the engine's function.
  fake::Reply& reply() { return engine().once(GetParam().function); }

  Objects objects{openQuivo()};
};

TEST_P(NestedCallTest, ClosingWaitsForTheEndOfTheOperation) {
  HRESULT closed = E_UNEXPECTED;
  size_t closedInside = 0;
  reply().during = [&] {
    closed = objects.quivo->Uninitialize();
    closedInside = engine().count("QUIVO_Uninitialize");
  };
  GetParam().call(objects);
  EXPECT_OK(closed);
  EXPECT_EQ(0u, closedInside);
  EXPECT_EQ("QUIVO_Uninitialize", engine().last().function);
  EXPECT_EQ(1u, engine().count("QUIVO_Uninitialize"));
}

TEST_P(NestedCallTest, SessionOpenedMeanwhileStaysOpen) {
  reply().during = [&] {
    EXPECT_OK(objects.quivo->Uninitialize());
    EXPECT_OK(objects.quivo->InitMinimal());
  };
  GetParam().call(objects);
  EXPECT_EQ(1u, engine().openSessions());
  engine().forgetCalls();
  EXPECT_OK(objects.quivo->ShowCrl(Variant()));
  EXPECT_EQ(1u, engine().count("QUIVO_ShowCrl"));
}

TEST_P(NestedCallTest, OtherOperationsMayRunMeanwhile) {
  int nested = 0;
  const uint64_t session = [&] {
    EXPECT_OK(objects.quivo->ShowCrl(Variant()));
    return engine().only("QUIVO_ShowCrl").value(0);
  }();
  reply().during = [&] {
    for (const Operation& other : Operations()) {
      engine().forgetCalls();
      other.call(objects);
      for (const fake::Call& call : engine().calls()) {
        if (call.function == other.function) {
          EXPECT_EQ(session, call.value(0)) << other.name;
        }
      }
      ++nested;
    }
  };
  GetParam().call(objects);
  EXPECT_EQ(static_cast<int>(Operations().size()), nested);
}

INSTANTIATE_TEST_SUITE_P(EngineCalls, NestedCallTest, ::testing::ValuesIn(Operations()), NameOfRow<Operation>);

using NestedSessionTest = ContractTest;

TEST_F(NestedSessionTest, ClosingSessionIsNotReached) {
  Ptr<IQUIVO> quivo = openQuivo();
  HRESULT closedAgain = E_UNEXPECTED;
  engine().on("QUIVO_Uninitialize").during = [&] {
    closedAgain = quivo->Uninitialize();
    EXPECT_OK(quivo->ShowCrl(Variant()));
  };
  EXPECT_OK(quivo->Uninitialize());
  EXPECT_OK(closedAgain);
  EXPECT_EQ(1u, engine().count("QUIVO_Uninitialize"));
  EXPECT_TRUE(engine().only("QUIVO_ShowCrl").null(0));
}

TEST_F(NestedSessionTest, FirstOfTwoOpenedSessionsStays) {
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  engine().on("QUIVO_Initialize").during = [&] { EXPECT_OK(quivo->InitMinimal()); };
  EXPECT_HR(kAlreadyInitialized, quivo->Initialize(Bstr(L"x"), Flag_Init_Noldap));
  EXPECT_EQ(1u, engine().openSessions());
  EXPECT_OK(quivo->ShowCrl(Variant()));
  EXPECT_NE(engine().only("QUIVO_Uninitialize").value(0), engine().only("QUIVO_ShowCrl").value(0));
}

TEST_F(NestedSessionTest, OperationThatBeganWithoutASessionEndsWithoutOne) {
  Objects objects(Make<IQUIVO>());
  engine().on("QUIVO_HashMem").output = {1};
  engine().on("QUIVO_HashMem").during = [&] { EXPECT_OK(objects.quivo->InitMinimal()); };
  Variant hash;
  EXPECT_OK(objects.quivo->HashMem(Variant(), hash.out()));
  EXPECT_TRUE(engine().only("QUIVO_FreeMem").null(0));
}

}  // namespace
