// The data form of a stream: decided once, by the first data, and kept for the life of its context.
#include "support/malloc_spy.h"
#include "support/operations.h"

namespace {

std::vector<OperationArgument> DataOf(const char* step) {
  return Where(ByteInputs(), [=](const OperationArgument& row) { return row.operation.name.ends_with(step); });
}

class StreamFormTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  HRESULT pass(VARIANT data) { return GetParam().call(objects, data); }
  size_t calls() { return engine().count(GetParam().function); }
  HRESULT update(VARIANT data) { return objects.quivo->StrHashUpdateMem(objects.stream, data); }

  Objects objects{openQuivo()};
};

class StreamInitTest : public StreamFormTest {};

TEST_P(StreamInitTest, PlainBytesFixThePlainForm) {
  EXPECT_OK(pass(ByteArray({1})));
  EXPECT_HR(kInvalidArgument, update(VbsByteArray({1})));
  EXPECT_OK(update(ByteArray({1})));
}

TEST_P(StreamInitTest, VbsBytesFixTheVbsForm) {
  EXPECT_OK(pass(VbsByteArray({1})));
  EXPECT_HR(kInvalidArgument, update(ByteArray({1})));
  EXPECT_OK(update(VbsByteArray({1})));
}

TEST_P(StreamInitTest, NoBytesLeaveTheFormOpen) {
  EXPECT_OK(pass(Variant()));
  EXPECT_OK(update(VbsByteArray({1})));
  EXPECT_HR(kInvalidArgument, update(ByteArray({1})));
}

TEST_P(StreamInitTest, ArrayWithoutElementsFixesItsForm) {
  EXPECT_OK(pass(ByteArray({})));
  EXPECT_HR(kInvalidArgument, update(VbsByteArray({1})));
  EXPECT_OK(update(ByteArray({1})));
  EXPECT_OK(pass(VbsByteArray({})));
  EXPECT_HR(kInvalidArgument, update(ByteArray({1})));
  EXPECT_OK(update(VbsByteArray({1})));
}

TEST_P(StreamInitTest, RefusedDataLeaveTheFormOpen) {
  EXPECT_HR(kInvalidArgument, pass(Variant::text(L"x")));
  EXPECT_OK(update(VbsByteArray({1})));
}

TEST_P(StreamInitTest, FormIsFixedThoughTheEngineFails) {
  engine().on(GetParam().function).result = 5;
  EXPECT_HR(0xE0690005, pass(VbsByteArray({1})));
  EXPECT_HR(kInvalidArgument, update(ByteArray({1})));
}

TEST_P(StreamInitTest, SecondStreamKeepsTheFormOfTheFirst) {
  EXPECT_OK(update(VbsByteArray({1})));
  EXPECT_OK(pass(Variant()));
  EXPECT_HR(kInvalidArgument, update(ByteArray({1})));
}

TEST_P(StreamInitTest, BytesOfASecondInitDecideAnew) {
  EXPECT_OK(update(ByteArray({1})));
  EXPECT_OK(pass(VbsByteArray({1})));
  EXPECT_OK(update(VbsByteArray({1})));
}

INSTANTIATE_TEST_SUITE_P(Methods, StreamInitTest, ::testing::ValuesIn(DataOf("InitMem")), NameOfRow<OperationArgument>);

using StreamWithoutDataTest = ContractTest;

TEST_F(StreamWithoutDataTest, InitLeavesAFixedFormAsItIs) {
  Objects objects(openQuivo());
  EXPECT_OK(objects.quivo->StrHashUpdateMem(objects.stream, VbsByteArray({1})));
  EXPECT_OK(objects.quivo->StrEncryptInitMem(objects.encrypt, objects.stream));
  EXPECT_HR(kInvalidArgument, objects.quivo->StrHashUpdateMem(objects.stream, ByteArray({1})));
  EXPECT_OK(objects.quivo->StrHashInitMem(Bstr(L"algorithm"), objects.stream));
  EXPECT_HR(kInvalidArgument, objects.quivo->StrHashUpdateMem(objects.stream, ByteArray({1})));
}

TEST_F(StreamWithoutDataTest, InitLeavesAnOpenFormOpen) {
  Objects objects(openQuivo());
  EXPECT_OK(objects.quivo->StrEncryptInitMem(objects.encrypt, objects.stream));
  EXPECT_OK(objects.quivo->StrHashInitMem(Bstr(L"algorithm"), objects.stream));
  EXPECT_OK(objects.quivo->StrHashUpdateMem(objects.stream, VbsByteArray({1})));
}

TEST_F(StreamWithoutDataTest, FormStaysAfterTheEnd) {
  Objects objects(openQuivo());
  EXPECT_OK(objects.quivo->StrHashUpdateMem(objects.stream, VbsByteArray({1})));
  for (const Operation& operation : Operations()) {
    if (!operation.name.ends_with("FinalMem")) continue;
    EXPECT_OK(operation.call(objects));
    EXPECT_HR(kInvalidArgument, objects.quivo->StrHashUpdateMem(objects.stream, ByteArray({1})));
  }
}

class StreamUpdateTest : public StreamFormTest {};

TEST_P(StreamUpdateTest, FirstUpdateFixesTheForm) {
  EXPECT_OK(pass(VbsByteArray({1})));
  EXPECT_HR(kInvalidArgument, pass(ByteArray({1})));
  EXPECT_OK(pass(VbsByteArray({2})));
}

TEST_P(StreamUpdateTest, OtherFormIsRefusedAndTheStreamGoesOn) {
  EXPECT_OK(pass(ByteArray({1})));
  EXPECT_HR(kInvalidArgument, pass(VbsByteArray({2})));
  EXPECT_EQ(1u, calls());
  EXPECT_OK(pass(ByteArray({3})));
  EXPECT_EQ(2u, calls());
}

TEST_P(StreamUpdateTest, EmptyUpdateFixesThePlainForm) {
  EXPECT_OK(pass(Variant()));
  EXPECT_HR(kInvalidArgument, pass(VbsByteArray({1})));
  EXPECT_OK(pass(ByteArray({1})));
}

TEST_P(StreamUpdateTest, EmptyUpdateIsOfThePlainForm) {
  EXPECT_OK(pass(VbsByteArray({1})));
  EXPECT_HR(kInvalidArgument, pass(Variant()));
  EXPECT_EQ(1u, calls());
}

TEST_P(StreamUpdateTest, RefusedDataLeaveTheFormOpen) {
  EXPECT_HR(kInvalidArgument, pass(Variant::text(L"x")));
  EXPECT_OK(pass(VbsByteArray({1})));
}

TEST_P(StreamUpdateTest, RefusedUpdateLeavesNoArrayLocked) {
  EXPECT_OK(pass(VbsByteArray({1})));
  Variant plain = ByteArray({1});
  EXPECT_HR(kInvalidArgument, pass(plain));
  EXPECT_EQ(0u, plain.safeArray()->cLocks);
}

TEST_P(StreamUpdateTest, FormIsFixedThoughTheEngineFails) {
  engine().once(GetParam().function).result = 5;
  EXPECT_HR(0xE0690005, pass(VbsByteArray({1})));
  EXPECT_HR(kInvalidArgument, pass(ByteArray({1})));
}

TEST_P(StreamUpdateTest, EveryContextHasItsOwnForm) {
  EXPECT_OK(pass(VbsByteArray({1})));
  Objects others(openQuivo());
  EXPECT_OK(GetParam().call(others, ByteArray({1})));
}

INSTANTIATE_TEST_SUITE_P(Methods, StreamUpdateTest, ::testing::ValuesIn(DataOf("UpdateMem")),
                         NameOfRow<OperationArgument>);

using StreamOutputTest = ContractTest;

TEST_F(StreamOutputTest, SignatureHasTheFormOfTheFirstData) {
  Objects objects(openQuivo());
  engine().on("QUIVO_StrSignFinalMem").output = {9};
  Variant signature;
  EXPECT_OK(objects.quivo->StrSignInitMem(objects.sign, Variant(), objects.stream));
  EXPECT_OK(objects.quivo->StrSignUpdateMem(objects.sign, objects.stream, VbsByteArray({1})));
  EXPECT_OK(objects.quivo->StrSignFinalMem(objects.sign, objects.stream, signature.out()));
  EXPECT_EQ((Bytes{9}), VbsBytesOf(signature));
}

TEST_F(StreamOutputTest, StreamWithoutDataHasThePlainForm) {
  Objects objects(openQuivo());
  engine().on("QUIVO_StrEncryptFinalMem").output = {9};
  Variant output;
  EXPECT_OK(objects.quivo->StrEncryptInitMem(objects.encrypt, objects.stream));
  EXPECT_OK(objects.quivo->StrEncryptFinalMem(objects.encrypt, objects.stream, output.out()));
  EXPECT_EQ((Bytes{9}), PlainBytesOf(output));
}

TEST_F(StreamOutputTest, RefusedUpdateWritesNothing) {
  Objects objects(openQuivo());
  EXPECT_OK(objects.quivo->StrHashUpdateMem(objects.stream, VbsByteArray({1})));
  Variant output = Variant::text(L"before"), left = Variant::text(L"before");
  EXPECT_HR(kInvalidArgument,
            objects.quivo->StrEncryptUpdateMem(objects.encrypt, objects.stream, ByteArray({1}), output.out()));
  EXPECT_HR(kInvalidArgument, objects.quivo->StrDecryptUpdateMem(objects.decrypt, objects.stream, ByteArray({1}),
                                                                 left.out(), output.out()));
  EXPECT_EQ(L"before", TextOf(output));
  EXPECT_EQ(L"before", TextOf(left));
}

TEST_F(StreamOutputTest, FailedUpdateWithoutBytesEmptiesTheOutput) {
  Objects objects(openQuivo());
  engine().on("QUIVO_StrEncryptUpdateMem").result = 0x19;
  Variant output = Variant::text(L"before");
  EXPECT_HR(0xE0690019,
            objects.quivo->StrEncryptUpdateMem(objects.encrypt, objects.stream, ByteArray({1}), output.out()));
  EXPECT_EQ(VT_EMPTY, output.type());
}

TEST_F(StreamOutputTest, EngineCodeWinsOverAFailureOfTheOutput) {
  Objects objects(openQuivo());
  engine().on("QUIVO_StrEncryptUpdateMem").result = 0x19;
  engine().on("QUIVO_StrEncryptUpdateMem").output = {9};
  engine().on("QUIVO_StrEncryptUpdateMem").during = [] { MallocSpy::get().failAllocation(0); };
  Variant output;
  EXPECT_HR(0xE0690019,
            objects.quivo->StrEncryptUpdateMem(objects.encrypt, objects.stream, ByteArray({1}), output.out()));
  EXPECT_TRUE(MallocSpy::get().allocationFailed());
  MallocSpy::get().failAllocation(-1);
}

}  // namespace
