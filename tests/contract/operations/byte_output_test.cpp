// How every byte result is written, and when the engine gets its buffer back.
#include "support/malloc_spy.h"
#include "support/operations.h"

namespace {

class ByteOutputTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  void SetUp() override {
    objects_.emplace(openQuivo());
    reply().output = {10, 0, 255};
  }
  HRESULT run(bool vbs, Variant& output) { return GetParam().callInForm(*objects_, vbs, output.out()); }
  fake::Reply& reply() { return engine().on(GetParam().function); }
  uintptr_t freed() { return engine().only("QUIVO_FreeMem").value(1); }

 private:
  std::optional<Objects> objects_;
};

TEST_P(ByteOutputTest, BytesAreAByteArray) {
  Variant output;
  EXPECT_OK(run(false, output));
  EXPECT_EQ((Bytes{10, 0, 255}), PlainBytesOf(output));
}

TEST_P(ByteOutputTest, BytesInVbsFormAreAnArrayOfByteVariants) {
  Variant output;
  EXPECT_OK(run(true, output));
  EXPECT_EQ((Bytes{10, 0, 255}), GetParam().hasVbsForm() ? VbsBytesOf(output) : PlainBytesOf(output));
}

TEST_P(ByteOutputTest, OutputBlobIsAbsentBeforeTheCall) {
  Variant output;
  EXPECT_OK(run(false, output));
  const fake::Call& call = engine().only(GetParam().function);
  bool foundBlob = false;
  for (size_t i = 1; i < call.arguments.size(); ++i) {
    const fake::Snapshot& target = call.argument(i).target;
    foundBlob |= target.bytes.size() == 16 && target.allZero();
  }
  EXPECT_TRUE(foundBlob);
}

TEST_P(ByteOutputTest, BufferIsGivenBackOnce) {
  Variant output;
  EXPECT_OK(run(false, output));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeMem"));
  EXPECT_EQ(engine().handedOut(), engine().givenBack());
}

TEST_P(ByteOutputTest, BufferIsGivenBackBeforeTheVariantIsSet) {
  Variant output = Variant::text(L"before");
  VARTYPE during = 0;
  engine().on("QUIVO_FreeMem").during = [&] { during = output.type(); };
  EXPECT_OK(run(false, output));
  EXPECT_EQ(VT_BSTR, during);
  EXPECT_EQ(kByteArray, output.type());
}

TEST_P(ByteOutputTest, FormerContentsAreCleared) {
  Variant output = Variant::text(L"before");
  EXPECT_OK(run(false, output));
  EXPECT_EQ(kByteArray, output.type());
}

TEST_P(ByteOutputTest, FormerArrayIsReplaced) {
  Variant output = VbsByteArray({1, 2, 3, 4});
  EXPECT_OK(run(false, output));
  EXPECT_EQ((Bytes{10, 0, 255}), PlainBytesOf(output));
}

TEST_P(ByteOutputTest, NoBytesLeaveAnEmptyVariant) {
  reply().output = {};
  for (bool vbs : {false, true}) {
    Objects objects(openQuivo());
    Variant output = Variant::text(L"before");
    EXPECT_OK(GetParam().callInForm(objects, vbs, output.out()));
    EXPECT_EQ(VT_EMPTY, output.type());
  }
  EXPECT_EQ(0u, engine().count("QUIVO_FreeMem"));
}

TEST_P(ByteOutputTest, ArrayThatCannotBeCreatedIsReportedAndTheBufferGivenBack) {
  for (int succeeding = 0;; ++succeeding) {
    Variant output = Variant::number(77);
    reply().during = [&] { MallocSpy::get().failAllocation(succeeding); };
    const HRESULT result = run(false, output);
    const bool failed = MallocSpy::get().allocationFailed();
    MallocSpy::get().failAllocation(-1);
    reply().during = nullptr;
    if (!failed) {
      EXPECT_GE(succeeding, 1) << "an array needs allocations";
      break;
    }
    EXPECT_HR(kOutOfMemory, result) << succeeding;
    EXPECT_EQ(VT_I4, output.type()) << succeeding;
    EXPECT_EQ(std::vector<std::string>{}, engine().outstanding()) << succeeding;
  }
}

TEST_P(ByteOutputTest, VariantThatCannotBeClearedIsReportedThoughTheBytesAreThere) {
  LockedVariant output;
  EXPECT_HR(DISP_E_ARRAYISLOCKED, GetParam().callInForm(Objects(openQuivo()), false, &output.value));
  EXPECT_EQ(kByteArray, V_VT(&output.value));
  EXPECT_EQ(3u, V_ARRAY(&output.value)->rgsabound[0].cElements);
}

TEST_P(ByteOutputTest, VariantThatCannotBeEmptiedIsReported) {
  reply().output = {};
  LockedVariant output;
  EXPECT_HR(DISP_E_ARRAYISLOCKED, GetParam().callInForm(Objects(openQuivo()), false, &output.value));
}

TEST_P(ByteOutputTest, NullPointerIsRefusedBeforeTheEngineIsCalled) {
  Objects objects(openQuivo());
  EXPECT_HR(kInvalidArgument, GetParam().callInForm(objects, false, nullptr));
  EXPECT_EQ(std::vector<std::string>{}, engine().names());
}

INSTANTIATE_TEST_SUITE_P(Results, ByteOutputTest, ::testing::ValuesIn(OutputsOf(Output::kBytes)),
                         NameOfRow<OperationArgument>);

using LastByteOutputTest = ByteOutputTest;

TEST_P(LastByteOutputTest, EngineResultThatIsNoSuccessLeavesTheVariantAlone) {
  reply().output = {};
  for (const auto& [code, expected] : {std::pair{0x1234, 0xE0691234u}, {1, 1u}}) {
    reply().result = code;
    Variant output = Variant::text(L"before");
    EXPECT_HR(expected, run(false, output));
    EXPECT_EQ(L"before", TextOf(output));
  }
}

INSTANTIATE_TEST_SUITE_P(Results, LastByteOutputTest,
                         ::testing::ValuesIn(Where(OutputsOf(Output::kBytes),
                                                   [](const auto& row) { return !row.isAlwaysWritten(); })),
                         NameOfRow<OperationArgument>);

using ByteOutputOfAnUpdateTest = ByteOutputTest;

TEST_P(ByteOutputOfAnUpdateTest, IsWrittenWhateverTheEngineReports) {
  reply().result = 0x1234;
  Variant output = Variant::text(L"before");
  EXPECT_HR(0xE0691234, run(false, output));
  EXPECT_EQ((Bytes{10, 0, 255}), PlainBytesOf(output));
}

INSTANTIATE_TEST_SUITE_P(Results, ByteOutputOfAnUpdateTest,
                         ::testing::ValuesIn(Where(OutputsOf(Output::kBytes),
                                                   [](const auto& row) { return row.isAlwaysWritten(); })),
                         NameOfRow<OperationArgument>);

using ByteOutputOfDataTest = ByteOutputTest;

bool IsString(const Argument& argument) { return argument.type == "BSTR"; }

TEST_P(ByteOutputOfDataTest, CopyOfTheDataIsGoneBeforeTheOutputIsMade) {
  Variant output;
  const long before = Module::get().liveAllocations();
  long during = -1;
  engine().on("QUIVO_FreeMem").during = [&] { during = Module::get().liveAllocations(); };
  EXPECT_OK(run(true, output));
  // Strings stay until the end of the call.
  const auto& arguments = GetParam().operation.member.arguments;
  EXPECT_EQ(before + std::count_if(arguments.begin(), arguments.end(), IsString), during);
}

INSTANTIATE_TEST_SUITE_P(Results, ByteOutputOfDataTest,
                         ::testing::ValuesIn(Where(OutputsOf(Output::kBytes),
                                                   [](const auto& row) { return row.operation.has("VARIANT"); })),
                         NameOfRow<OperationArgument>);

using EmptyBufferTest = ContractTest;

TEST_F(EmptyBufferTest, BufferOfNoBytesIsLeftToTheEngine) {
  static uint8_t buffer;
  engine().on("QUIVO_HashMem").during = [&] {
    // The pointer of the blob, behind its length.
    *reinterpret_cast<uint8_t**>(engine().only("QUIVO_HashMem").value(2) + 8) = &buffer;
  };
  Variant output = Variant::number(77);
  EXPECT_OK(openQuivo()->HashMem(ByteArray({1}), output.out()));
  EXPECT_EQ(VT_EMPTY, output.type());
  EXPECT_EQ(0u, engine().count("QUIVO_FreeMem"));
}

}  // namespace
