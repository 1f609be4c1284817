// Every operation with every one of its allocations failing: a failure is reported, nothing is lost or left locked.
#include <functional>

#include "support/certificates.h"
#include "support/import_patch.h"
#include "support/invoke.h"
#include "support/malloc_spy.h"
#include "support/operations.h"

namespace {

/// Answers with everything that an engine can hand out.
void AnswerRichly(fake::FakeEngine& engine) {
  for (const OperationArgument& row : OutputsOf(Output::kBytes)) engine.on(row.function).output = {1, 2, 3};
  for (const OperationArgument& row : OutputsOf(Output::kObjects)) {
    engine.on(row.function).signatures = {{0, 0, FullCertificate()}, {5, 0, {}}};
    engine.on(row.function).certificates = {FullCertificate()};
  }
  for (const OperationArgument& row : OutputsOf(Output::kCertificate)) {
    engine.on(row.function).certificate = FullCertificate();
  }
  engine.on("QUIVO_EncodeMem").text = "text";
  engine.on("QUIVO_Ctrl").text = "text";
}

class AllocationFailureTest : public ContractTest, public ::testing::WithParamInterface<Operation> {
 protected:
  void SetUp() override { AnswerRichly(engine()); }

  /// Runs the call with each allocation failing in turn, until one run needs no more of them. `first` is the result
  /// when the first of them fails.
  void sweep(const std::function<void(long)>& fail, const std::function<bool()>& failed,
             uint32_t first = kOutOfMemory) {
    for (long succeeding = 0; succeeding < 2000; ++succeeding) {
      Objects objects(openQuivo());
      fail(succeeding);
      const HRESULT result = GetParam().call(objects);
      const bool happened = failed();
      fail(-1);
      EXPECT_EQ(std::vector<std::string>{}, engine().outstanding()) << "with " << succeeding << " allocations";
      if (!happened) {
        EXPECT_OK(result);
        return;
      }
      EXPECT_HR(succeeding == 0 ? first : kOutOfMemory, result) << "with " << succeeding << " allocations";
    }
    FAIL() << "never succeeded";
  }
};

TEST_P(AllocationFailureTest, AllocationsOfTheModule) {
  const Module& module = Module::get();
  // Of this method alone the buffer of the text fails unmapped.
  const uint32_t first = GetParam().name == "GetMyCertB64" ? 0x8007000E : kOutOfMemory;
  sweep([&](long succeeding) { module.failAllocation(succeeding); }, [&] { return module.allocationFailed(); }, first);
}

TEST_P(AllocationFailureTest, AllocationsOfThePlatformForTheResults) {
  MallocSpy& spy = MallocSpy::get();
  // Armed by the engine: what a row allocates for its arguments is the test's own affair.
  const auto fail = [&](long succeeding) {
    spy.failAllocation(-1);
    engine().on(GetParam().function).during = [&spy, succeeding] { spy.failAllocation(succeeding); };
  };
  sweep(fail, [&] { return spy.allocationFailed(); });
  engine().on(GetParam().function).during = nullptr;
}

INSTANTIATE_TEST_SUITE_P(Methods, AllocationFailureTest, ::testing::ValuesIn(Operations()), NameOfRow<Operation>);

using LateAllocationFailureTest = ContractTest;

TEST_F(LateAllocationFailureTest, LateBoundCallWithEachFormOfItsOutput) {
  engine().on("QUIVO_HashMem").output = {9};
  for (int form = 0; form < 3; ++form) {
    for (long succeeding = 0;; ++succeeding) {
      ASSERT_LT(succeeding, 100);
      Objects objects(openQuivo());
      Holder holder(Holder::Kind::kExtendable);
      Variant data = VbsByteArray({1}), variable, holderArgument = Variant::object(&holder),
              reference = ByRef(variable);
      LateCall call{L"HashMem", DISPATCH_METHOD, {data}, {}, form == 1};
      if (form == 0) call.positional.push_back(reference);
      if (form == 2) call.positional.push_back(holderArgument);
      Module::get().failAllocation(succeeding);
      const LateResult outcome = Invoke(objects.quivo, call);
      const bool failed = Module::get().allocationFailed();
      Module::get().failAllocation(-1);
      if (!failed) {
        EXPECT_OK(outcome.result);
        break;
      }
      EXPECT_TRUE(FAILED(outcome.result)) << form << " " << succeeding;
    }
  }
}

TEST_F(LateAllocationFailureTest, NameOfTheValueThatAnObjectGetsCannotBeAllocated) {
  engine().on("QUIVO_HashMem").output = {9};
  Objects objects(openQuivo());
  Holder holder(Holder::Kind::kExtendable);
  Variant data = ByteArray({1}), argument = Variant::object(&holder);
  ImportHook<"SysAllocString", decltype(SysAllocString)> hook([](const OLECHAR*) -> BSTR { return nullptr; });
  EXPECT_HR(E_OUTOFMEMORY, Invoke(objects.quivo, {L"HashMem", DISPATCH_METHOD, {data, argument}, {}, false}).result);
  EXPECT_FALSE(holder.wasSet());
}

}  // namespace
