// Signing bytes.
#include "support/malloc_spy.h"
#include "support/records.h"

namespace {

class SignMemTest : public ContractTest {
 protected:
  void SetUp() override {
    quivo_ = openQuivo();
    param_ = Make<ISignParam>();
  }
  HRESULT sign(VARIANT data, VARIANT signIn) { return quivo_->SignMem(param_, data, signIn, output.out()); }
  fake::Reply& reply() { return engine().on("QUIVO_SignMem"); }
  const fake::Call& call() { return engine().only("QUIVO_SignMem"); }
  Ptr<ISignParam>& param() { return param_; }

  Variant output;

 private:
  Ptr<IQUIVO> quivo_;
  Ptr<ISignParam> param_;
};

TEST_F(SignMemTest, ParametersAndDataReachTheEngine) {
  EXPECT_OK(param()->put_flag(static_cast<SignParamFlag_t>(0x10000029)));
  EXPECT_OK(sign(ByteArray({1, 2, 3}), ByteArray({4, 5})));
  EXPECT_EQ(0x10000029u, call().record(1).u32(0));
  EXPECT_EQ((Bytes{1, 2, 3}), call().blobBytes(2));
  EXPECT_EQ((Bytes{4, 5}), call().blobBytes(3));
  EXPECT_TRUE(call().record(4).allZero());
}

TEST_F(SignMemTest, BothByteArraysAreHandedOverInPlace) {
  Variant data = ByteArray({1}), signIn = ByteArray({2});
  EXPECT_OK(sign(data, signIn));
  EXPECT_EQ(reinterpret_cast<uintptr_t>(data.safeArray()->pvData), call().blobData(2));
  EXPECT_EQ(reinterpret_cast<uintptr_t>(signIn.safeArray()->pvData), call().blobData(3));
}

TEST_F(SignMemTest, FailureOfTheDataIsReportedBeforeThatOfTheSignature) {
  Variant vbs = VbsByteArray({1});
  Module::get().failAllocation(0);
  EXPECT_HR(kOutOfMemory, sign(vbs, Variant::text(L"x")));
}

TEST_F(SignMemTest, EmptySignatureIsAbsent) {
  EXPECT_OK(sign(ByteArray({1}), Variant()));
  EXPECT_EQ(0u, call().blobLength(3));
  EXPECT_EQ(0u, call().blobData(3));
}

TEST_F(SignMemTest, FormOfTheOutputFollowsTheData) {
  reply().output = {9};
  EXPECT_OK(sign(VbsByteArray({1}), Variant()));
  EXPECT_EQ((Bytes{9}), VbsBytesOf(output));
  EXPECT_OK(sign(ByteArray({1}), Variant()));
  EXPECT_EQ((Bytes{9}), PlainBytesOf(output));
}

TEST_F(SignMemTest, FormOfTheOutputNeverFollowsTheSignature) {
  reply().output = {9};
  EXPECT_OK(sign(Variant(), VbsByteArray({1})));
  EXPECT_EQ((Bytes{9}), PlainBytesOf(output));
}

TEST_F(SignMemTest, BothInVbsFormAreAccepted) {
  reply().output = {9};
  EXPECT_OK(sign(VbsByteArray({1}), VbsByteArray({2})));
  EXPECT_EQ((Bytes{2}), call().blobBytes(3));
  EXPECT_EQ((Bytes{9}), VbsBytesOf(output));
}

TEST_F(SignMemTest, MixedFormsAreRefusedWithoutTheEngine) {
  EXPECT_HR(kInvalidArgument, sign(ByteArray({1}), VbsByteArray({2})));
  EXPECT_HR(kInvalidArgument, sign(VbsByteArray({1}), ByteArray({2})));
  EXPECT_EQ(0u, engine().count("QUIVO_SignMem"));
}

TEST_F(SignMemTest, RefusalLeavesNoArrayLocked) {
  Variant plain = ByteArray({1}), vbs = VbsByteArray({2});
  EXPECT_HR(kInvalidArgument, sign(plain, vbs));
  EXPECT_HR(kInvalidArgument, sign(vbs, plain));
  EXPECT_HR(kInvalidArgument, sign(plain, Variant::text(L"x")));
  EXPECT_EQ(0u, plain.safeArray()->cLocks);
  EXPECT_EQ(0u, vbs.safeArray()->cLocks);
}

TEST_F(SignMemTest, EmptyArgumentNeverMixes) {
  EXPECT_OK(sign(VbsByteArray({1}), Variant()));
  EXPECT_OK(sign(Variant(), VbsByteArray({1})));
  EXPECT_OK(sign(Variant(), ByteArray({1})));
  EXPECT_OK(sign(Variant(), Variant()));
}

TEST_F(SignMemTest, ArrayWithoutElementsHasAFormAllTheSame) {
  EXPECT_HR(kInvalidArgument, sign(ByteArray({}), VbsByteArray({1})));
  EXPECT_OK(sign(ByteArray({}), ByteArray({1})));
}

TEST_F(SignMemTest, SameArrayMayBeBothArguments) {
  Variant both = ByteArray({1});
  ULONG locks = 0;
  reply().during = [&] { locks = both.safeArray()->cLocks; };
  EXPECT_OK(sign(both, both));
  EXPECT_EQ(2u, locks);
  EXPECT_EQ(0u, both.safeArray()->cLocks);
}

TEST_F(SignMemTest, FailedCallDoesNotTakeTheOutputOver) {
  reply().output = {1, 2};
  reply().result = 1;
  output = Variant::text(L"before");
  EXPECT_HR(S_FALSE, sign(ByteArray({1}), Variant()));
  EXPECT_EQ(L"before", ::TextOf(output));
  EXPECT_EQ(0u, engine().count("QUIVO_FreeMem"));
  engine().releaseOutstanding();
}

TEST_F(SignMemTest, LargeDataAreHandedOverWhole) {
  const Bytes large(1 << 20, 0x5A);
  EXPECT_OK(sign(ByteArray(large), Variant()));
  EXPECT_EQ(large, call().blobBytes(2));
}

TEST_F(SignMemTest, OutputMayBeTheDataVariable) {
  reply().output = {9};
  Variant variable = ByteArray({1});
  Ptr<IQUIVO> quivo = openQuivo();
  EXPECT_OK(quivo->SignMem(param(), ByRef(variable), Variant(), variable.out()));
  EXPECT_EQ((Bytes{9}), PlainBytesOf(variable));
}

}  // namespace
