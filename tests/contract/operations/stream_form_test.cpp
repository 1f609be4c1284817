// The data form of a stream: decided once, by the first data, and kept for the life of its context.
#include "contract/operations/calls.h"
#include "support/malloc_spy.h"

namespace {

std::vector<ByteInput> inits() {
  return rowsNamed(kByteInputs, {"StrSignInitMem", "StrVerifyInitMem", "StrDecryptInitMem"});
}

std::vector<ByteInput> updates() {
  return rowsNamed(kByteInputs, {"StrSignUpdateMem", "StrVerifyUpdateMem", "StrEncryptUpdateMem", "StrDecryptUpdateMem",
                                 "StrHashUpdateMem"});
}

class StreamFormTest : public ContractTest, public ::testing::WithParamInterface<ByteInput> {
 protected:
  HRESULT pass(VARIANT data) { return GetParam().call(objects, data); }
  size_t calls() { return engine().count(GetParam().function); }
  HRESULT update(VARIANT data) { return objects.quivo->StrHashUpdateMem(objects.stream, data); }

  Objects objects{openQuivo()};
};

class StreamInitTest : public StreamFormTest {};

TEST_P(StreamInitTest, PlainBytesFixThePlainForm) {
  EXPECT_OK(pass(bytes({1})));
  EXPECT_HR(kInvalidArgument, update(vbsBytes({1})));
  EXPECT_OK(update(bytes({1})));
}

TEST_P(StreamInitTest, VbsBytesFixTheVbsForm) {
  EXPECT_OK(pass(vbsBytes({1})));
  EXPECT_HR(kInvalidArgument, update(bytes({1})));
  EXPECT_OK(update(vbsBytes({1})));
}

TEST_P(StreamInitTest, NoBytesLeaveTheFormOpen) {
  EXPECT_OK(pass(Variant()));
  EXPECT_OK(update(vbsBytes({1})));
  EXPECT_HR(kInvalidArgument, update(bytes({1})));
}

TEST_P(StreamInitTest, ArrayWithoutElementsFixesItsForm) {
  EXPECT_OK(pass(bytes({})));
  EXPECT_HR(kInvalidArgument, update(vbsBytes({1})));
  EXPECT_OK(update(bytes({1})));
  EXPECT_OK(pass(vbsBytes({})));
  EXPECT_HR(kInvalidArgument, update(bytes({1})));
  EXPECT_OK(update(vbsBytes({1})));
}

TEST_P(StreamInitTest, RefusedDataLeaveTheFormOpen) {
  EXPECT_HR(kInvalidArgument, pass(Variant::text(L"x")));
  EXPECT_OK(update(vbsBytes({1})));
}

TEST_P(StreamInitTest, FormIsFixedThoughTheEngineFails) {
  engine().on(GetParam().function).result = 5;
  EXPECT_HR(0xE0690005, pass(vbsBytes({1})));
  EXPECT_HR(kInvalidArgument, update(bytes({1})));
}

TEST_P(StreamInitTest, SecondStreamKeepsTheFormOfTheFirst) {
  EXPECT_OK(update(vbsBytes({1})));
  EXPECT_OK(pass(Variant()));
  EXPECT_HR(kInvalidArgument, update(bytes({1})));
}

TEST_P(StreamInitTest, BytesOfASecondInitDecideAnew) {
  EXPECT_OK(update(bytes({1})));
  EXPECT_OK(pass(vbsBytes({1})));
  EXPECT_OK(update(vbsBytes({1})));
}

INSTANTIATE_TEST_SUITE_P(Methods, StreamInitTest, ::testing::ValuesIn(inits()), nameOfRow<ByteInput>);

using StreamWithoutDataTest = ContractTest;

TEST_F(StreamWithoutDataTest, InitLeavesAFixedFormAsItIs) {
  Objects objects(openQuivo());
  EXPECT_OK(objects.quivo->StrHashUpdateMem(objects.stream, vbsBytes({1})));
  EXPECT_OK(objects.quivo->StrEncryptInitMem(objects.encrypt, objects.stream));
  EXPECT_HR(kInvalidArgument, objects.quivo->StrHashUpdateMem(objects.stream, bytes({1})));
  EXPECT_OK(objects.quivo->StrHashInitMem(Bstr(L"algorithm"), objects.stream));
  EXPECT_HR(kInvalidArgument, objects.quivo->StrHashUpdateMem(objects.stream, bytes({1})));
}

TEST_F(StreamWithoutDataTest, InitLeavesAnOpenFormOpen) {
  Objects objects(openQuivo());
  EXPECT_OK(objects.quivo->StrEncryptInitMem(objects.encrypt, objects.stream));
  EXPECT_OK(objects.quivo->StrHashInitMem(Bstr(L"algorithm"), objects.stream));
  EXPECT_OK(objects.quivo->StrHashUpdateMem(objects.stream, vbsBytes({1})));
}

TEST_F(StreamWithoutDataTest, FormStaysAfterTheEnd) {
  Objects objects(openQuivo());
  using End = HRESULT (*)(const Objects&);
  const End ends[] = {
      [](const Objects& o) { return o.quivo->StrSignFinalMem(o.sign, o.stream, Variant().out()); },
      [](const Objects& o) { return o.quivo->StrVerifyFinalMem(o.verify, o.stream, Variant().out(), Variant().out()); },
      [](const Objects& o) { return o.quivo->StrEncryptFinalMem(o.encrypt, o.stream, Variant().out()); },
      [](const Objects& o) { return o.quivo->StrDecryptFinalMem(o.decrypt, o.stream, Ptr<ICertificate>().out()); },
      [](const Objects& o) { return o.quivo->StrHashFinalMem(o.stream, Variant().out()); }};
  EXPECT_OK(objects.quivo->StrHashUpdateMem(objects.stream, vbsBytes({1})));
  for (End end : ends) {
    EXPECT_OK(end(objects));
    EXPECT_HR(kInvalidArgument, objects.quivo->StrHashUpdateMem(objects.stream, bytes({1})));
  }
}

class StreamUpdateTest : public StreamFormTest {};

TEST_P(StreamUpdateTest, FirstUpdateFixesTheForm) {
  EXPECT_OK(pass(vbsBytes({1})));
  EXPECT_HR(kInvalidArgument, pass(bytes({1})));
  EXPECT_OK(pass(vbsBytes({2})));
}

TEST_P(StreamUpdateTest, OtherFormIsRefusedAndTheStreamGoesOn) {
  EXPECT_OK(pass(bytes({1})));
  EXPECT_HR(kInvalidArgument, pass(vbsBytes({2})));
  EXPECT_EQ(1u, calls());
  EXPECT_OK(pass(bytes({3})));
  EXPECT_EQ(2u, calls());
}

TEST_P(StreamUpdateTest, EmptyUpdateFixesThePlainForm) {
  EXPECT_OK(pass(Variant()));
  EXPECT_HR(kInvalidArgument, pass(vbsBytes({1})));
  EXPECT_OK(pass(bytes({1})));
}

TEST_P(StreamUpdateTest, EmptyUpdateIsOfThePlainForm) {
  EXPECT_OK(pass(vbsBytes({1})));
  EXPECT_HR(kInvalidArgument, pass(Variant()));
  EXPECT_EQ(1u, calls());
}

TEST_P(StreamUpdateTest, RefusedDataLeaveTheFormOpen) {
  EXPECT_HR(kInvalidArgument, pass(Variant::text(L"x")));
  EXPECT_OK(pass(vbsBytes({1})));
}

TEST_P(StreamUpdateTest, RefusedUpdateLeavesNoArrayLocked) {
  EXPECT_OK(pass(vbsBytes({1})));
  Variant plain = bytes({1});
  EXPECT_HR(kInvalidArgument, pass(plain));
  EXPECT_EQ(0u, plain.safeArray()->cLocks);
}

TEST_P(StreamUpdateTest, FormIsFixedThoughTheEngineFails) {
  engine().once(GetParam().function).result = 5;
  EXPECT_HR(0xE0690005, pass(vbsBytes({1})));
  EXPECT_HR(kInvalidArgument, pass(bytes({1})));
}

TEST_P(StreamUpdateTest, EveryContextHasItsOwnForm) {
  EXPECT_OK(pass(vbsBytes({1})));
  Objects others(openQuivo());
  EXPECT_OK(GetParam().call(others, bytes({1})));
}

INSTANTIATE_TEST_SUITE_P(Methods, StreamUpdateTest, ::testing::ValuesIn(updates()), nameOfRow<ByteInput>);

using StreamOutputTest = ContractTest;

TEST_F(StreamOutputTest, SignatureHasTheFormOfTheFirstData) {
  Objects objects(openQuivo());
  engine().on("QUIVO_StrSignFinalMem").output = {9};
  Variant signature;
  EXPECT_OK(objects.quivo->StrSignInitMem(objects.sign, Variant(), objects.stream));
  EXPECT_OK(objects.quivo->StrSignUpdateMem(objects.sign, objects.stream, vbsBytes({1})));
  EXPECT_OK(objects.quivo->StrSignFinalMem(objects.sign, objects.stream, signature.out()));
  EXPECT_EQ((Bytes{9}), vbsBytesOf(signature));
}

TEST_F(StreamOutputTest, StreamWithoutDataHasThePlainForm) {
  Objects objects(openQuivo());
  engine().on("QUIVO_StrEncryptFinalMem").output = {9};
  Variant output;
  EXPECT_OK(objects.quivo->StrEncryptInitMem(objects.encrypt, objects.stream));
  EXPECT_OK(objects.quivo->StrEncryptFinalMem(objects.encrypt, objects.stream, output.out()));
  EXPECT_EQ((Bytes{9}), plainBytesOf(output));
}

TEST_F(StreamOutputTest, RefusedUpdateWritesNothing) {
  Objects objects(openQuivo());
  EXPECT_OK(objects.quivo->StrHashUpdateMem(objects.stream, vbsBytes({1})));
  Variant output = Variant::text(L"before"), left = Variant::text(L"before");
  EXPECT_HR(kInvalidArgument,
            objects.quivo->StrEncryptUpdateMem(objects.encrypt, objects.stream, bytes({1}), output.out()));
  EXPECT_HR(kInvalidArgument,
            objects.quivo->StrDecryptUpdateMem(objects.decrypt, objects.stream, bytes({1}), left.out(), output.out()));
  EXPECT_EQ(L"before", textOf(output));
  EXPECT_EQ(L"before", textOf(left));
}

TEST_F(StreamOutputTest, FailedUpdateWithoutBytesEmptiesTheOutput) {
  Objects objects(openQuivo());
  engine().on("QUIVO_StrEncryptUpdateMem").result = 0x19;
  Variant output = Variant::text(L"before");
  EXPECT_HR(0xE0690019, objects.quivo->StrEncryptUpdateMem(objects.encrypt, objects.stream, bytes({1}), output.out()));
  EXPECT_EQ(VT_EMPTY, output.type());
}

TEST_F(StreamOutputTest, EngineCodeWinsOverAFailureOfTheOutput) {
  Objects objects(openQuivo());
  engine().on("QUIVO_StrEncryptUpdateMem").result = 0x19;
  engine().on("QUIVO_StrEncryptUpdateMem").output = {9};
  engine().on("QUIVO_StrEncryptUpdateMem").during = [] { MallocSpy::get().failAllocation(0); };
  Variant output;
  EXPECT_HR(0xE0690019, objects.quivo->StrEncryptUpdateMem(objects.encrypt, objects.stream, bytes({1}), output.out()));
  EXPECT_TRUE(MallocSpy::get().allocationFailed());
  MallocSpy::get().failAllocation(-1);
}

}  // namespace
