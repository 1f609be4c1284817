// Verifying bytes and files.
#include "support/certificates.h"
#include "support/class_objects.h"
#include "support/operations.h"

namespace {

size_t CountOf(const Variant& results) { return ObjectsOf(results).size(); }

class VerifyMemTest : public ContractTest {
 protected:
  HRESULT verify(VARIANT data, VARIANT signIn) {
    return quivo->VerifyMem(param, data, signIn, output.out(), results.out());
  }
  fake::Reply& reply() { return engine().on("QUIVO_VerifyMem"); }
  const fake::Call& call() { return engine().only("QUIVO_VerifyMem"); }

  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IVerifyParam> param = Make<IVerifyParam>();
  Variant output, results;
};

TEST_F(VerifyMemTest, ParametersAndDataReachTheEngine) {
  EXPECT_OK(param->put_flag(Flag_Verify_DelSign));
  EXPECT_OK(param->put_nSignToDelete(Delete_All_Signs));
  EXPECT_OK(param->put_policies(ObjectArray({Make<IPolicy>()})));
  EXPECT_OK(param->put_extKeyUsage(StringArray({L"1.2"})));
  EXPECT_OK(verify(ByteArray({1, 2}), ByteArray({3})));
  EXPECT_EQ(4u, call().record(1).u32(0));
  EXPECT_EQ(-1, call().record(1).i32(64));
  EXPECT_EQ(1, call().record(1).i32(20));
  EXPECT_EQ("1.2", call().record(1).at(40).text(0));
  EXPECT_EQ((Bytes{1, 2}), call().blobBytes(2));
  EXPECT_EQ((Bytes{3}), call().blobBytes(3));
}

TEST_F(VerifyMemTest, OutputsAreZeroBeforeTheCall) {
  EXPECT_OK(verify(ByteArray({1}), Variant()));
  EXPECT_TRUE(call().record(4).allZero());
  EXPECT_EQ(0, call().record(5).i32(0));
  EXPECT_EQ(0u, call().record(5).pointer(8));
}

TEST_F(VerifyMemTest, FailureOfTheDataIsReportedBeforeThatOfTheSignature) {
  Variant vbs = VbsByteArray({1});
  Module::get().failAllocation(0);
  EXPECT_HR(kOutOfMemory, verify(vbs, Variant::text(L"x")));
}

TEST_F(VerifyMemTest, MixedFormsAreRefusedWithoutTheEngine) {
  Variant plain = ByteArray({1}), vbs = VbsByteArray({2});
  EXPECT_HR(kInvalidArgument, verify(plain, vbs));
  EXPECT_HR(kInvalidArgument, verify(vbs, plain));
  EXPECT_EQ(0u, engine().count("QUIVO_VerifyMem"));
  EXPECT_EQ(0u, plain.safeArray()->cLocks);
}

TEST_F(VerifyMemTest, FormOfTheOutputFollowsTheData) {
  reply().output = {9};
  EXPECT_OK(verify(VbsByteArray({1}), VbsByteArray({2})));
  EXPECT_EQ((Bytes{9}), VbsBytesOf(output));
  EXPECT_OK(verify(Variant(), VbsByteArray({2})));
  EXPECT_EQ((Bytes{9}), PlainBytesOf(output));
}

TEST_F(VerifyMemTest, RejectedMessageStillHasItsResults) {
  reply().result = 0x19;
  reply().signatures = {{0, 0, CertificateOf("CN=good")}, {0x19, 0, {}}};
  output = Variant::text(L"before");
  EXPECT_HR(0xE0690019, verify(ByteArray({1}), Variant()));
  ASSERT_EQ(2u, CountOf(results));
  long status = 0;
  EXPECT_OK(ObjectsOf<ISignStatus>(results)[1]->get_status(&status));
  EXPECT_EQ(0x19, status);
  EXPECT_EQ(L"before", TextOf(output));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_F(VerifyMemTest, FailedVerificationDoesNotTakeTheOutputOver) {
  reply().result = 0x19;
  reply().output = {1, 2};
  EXPECT_HR(0xE0690019, verify(ByteArray({1}), Variant()));
  EXPECT_EQ(VT_EMPTY, output.type());
  engine().releaseOutstanding();
}

TEST_F(VerifyMemTest, FailureOfTheResultsKeepsTheOutput) {
  SubstituteFactory factory(__uuidof(SignStatus));
  factory.failAfter(0, E_NOINTERFACE);
  reply().output = {1};
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(E_NOINTERFACE, verify(ByteArray({1}), Variant()));
  EXPECT_EQ(VT_EMPTY, output.type());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeMem"));
}

TEST_F(VerifyMemTest, ResultsAreGivenBackBeforeTheOutput) {
  reply().output = {1};
  EXPECT_OK(verify(ByteArray({1}), Variant()));
  EXPECT_EQ((std::vector<std::string>{"QUIVO_VerifyMem", "QUIVO_FreeVerifyResult", "QUIVO_FreeMem"}), engine().names());
}

class VerifyFileTest : public ContractTest, public ::testing::WithParamInterface<Operation> {
 protected:
  HRESULT verify(BSTR data, BSTR signIn, BSTR signOut) {
    return GetParam().call(Objects(quivo), {{0, param}, {1, data}, {2, signIn}, {3, signOut}, {4, results.out()}});
  }
  fake::Reply& reply() { return engine().on(GetParam().function); }
  const fake::Call& call() { return engine().only(GetParam().function); }

  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IVerifyParam> param = Make<IVerifyParam>();
  Variant results;
};

TEST_P(VerifyFileTest, PathsReachTheEngineInOrder) {
  EXPECT_OK(param->put_info(Field_Subject));
  EXPECT_OK(verify(Bstr(L"data"), Bstr(L"in"), Bstr(L"out")));
  EXPECT_EQ(4u, call().record(1).u32(72));
  EXPECT_EQ("data", call().text(2));
  EXPECT_EQ("in", call().text(3));
  EXPECT_EQ("out", call().text(4));
  EXPECT_EQ(0, call().record(5).i32(0));
  EXPECT_EQ(0u, call().record(5).pointer(8));
}

TEST_P(VerifyFileTest, DataAndOutputMayBeMissing) {
  EXPECT_OK(verify(nullptr, Bstr(L"in"), nullptr));
  EXPECT_TRUE(call().null(2));
  EXPECT_TRUE(call().null(4));
}

TEST_P(VerifyFileTest, NullSignaturePathIsRefused) {
  EXPECT_HR(kInvalidArgument, verify(Bstr(L"data"), nullptr, Bstr(L"out")));
  EXPECT_EQ(0u, engine().count(GetParam().function));
  EXPECT_EQ(VT_EMPTY, results.type());
}

TEST_P(VerifyFileTest, UntrustedDataModeLeavesTheResultsAlone) {
  quivo = untrustedQuivo();
  results = Variant::text(L"before");
  EXPECT_HR(kAccessDenied, verify(nullptr, Bstr(L"in"), nullptr));
  EXPECT_EQ(L"before", TextOf(results));
}

INSTANTIATE_TEST_SUITE_P(Methods, VerifyFileTest, ::testing::ValuesIn(OperationsEnding("VerifyFile")),
                         NameOfRow<Operation>);

}  // namespace
