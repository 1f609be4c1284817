// The data form of a stream: decided once, by the first data, and kept for the life of its context.
#include <functional>

#include "contract/calls.h"

namespace {

/// The rows of a table whose names begin with one of `prefixes`.
template <class Row>
std::vector<Row> rowsNamed(const std::vector<Row>& all, std::initializer_list<const char*> prefixes) {
  std::vector<Row> found;
  for (const Row& row : all) {
    for (const char* prefix : prefixes) {
      if (std::string(row.name).rfind(prefix, 0) == 0) found.push_back(row);
    }
  }
  return found;
}

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

}  // namespace
