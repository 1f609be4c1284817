// Verifying bytes and files.
#include "contract/properties/records.h"
#include "support/certificates.h"
#include "support/class_objects.h"

namespace {

size_t countOf(const Variant& results) { return objectsOf(results).size(); }

class VerifyMemTest : public ContractTest {
 protected:
  HRESULT verify(VARIANT data, VARIANT signIn) {
    return quivo->VerifyMem(param, data, signIn, output.out(), results.out());
  }
  fake::Reply& reply() { return engine().on("QUIVO_VerifyMem"); }
  const fake::Call& call() { return engine().only("QUIVO_VerifyMem"); }

  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IVerifyParam> param = make<VerifyParam>();
  Variant output, results;
};

TEST_F(VerifyMemTest, ParametersAndDataReachTheEngine) {
  EXPECT_OK(param->put_flag(Flag_Verify_DelSign));
  EXPECT_OK(param->put_nSignToDelete(Delete_All_Signs));
  EXPECT_OK(param->put_policies(objects({make<Policy>()})));
  EXPECT_OK(param->put_extKeyUsage(strings({L"1.2"})));
  EXPECT_OK(verify(bytes({1, 2}), bytes({3})));
  EXPECT_EQ(4u, call().record(1).u32(0));
  EXPECT_EQ(-1, call().record(1).i32(64));
  EXPECT_EQ(1, call().record(1).i32(20));
  EXPECT_EQ("1.2", call().record(1).at(40).text(0));
  EXPECT_EQ((Bytes{1, 2}), call().blobBytes(2));
  EXPECT_EQ((Bytes{3}), call().blobBytes(3));
}

TEST_F(VerifyMemTest, OutputsAreZeroBeforeTheCall) {
  EXPECT_OK(verify(bytes({1}), Variant()));
  EXPECT_TRUE(call().record(4).allZero());
  EXPECT_EQ(0, call().record(5).i32(0));
  EXPECT_EQ(0u, call().record(5).pointer(8));
}

TEST_F(VerifyMemTest, FailureOfTheDataIsToldBeforeThatOfTheSignature) {
  Variant vbs = vbsBytes({1});
  Module::get().failAllocation(0);
  EXPECT_HR(kOutOfMemory, verify(vbs, Variant::text(L"x")));
}

TEST_F(VerifyMemTest, MixedFormsAreRefusedWithoutTheEngine) {
  Variant plain = bytes({1}), vbs = vbsBytes({2});
  EXPECT_HR(kInvalidArgument, verify(plain, vbs));
  EXPECT_HR(kInvalidArgument, verify(vbs, plain));
  EXPECT_EQ(0u, engine().count("QUIVO_VerifyMem"));
  EXPECT_EQ(0u, plain.safeArray()->cLocks);
}

TEST_F(VerifyMemTest, FormOfTheOutputFollowsTheData) {
  reply().output = {9};
  EXPECT_OK(verify(vbsBytes({1}), vbsBytes({2})));
  EXPECT_EQ((Bytes{9}), vbsBytesOf(output));
  EXPECT_OK(verify(Variant(), vbsBytes({2})));
  EXPECT_EQ((Bytes{9}), plainBytesOf(output));
}

TEST_F(VerifyMemTest, RejectedMessageStillHasItsResults) {
  reply().result = 0x19;
  reply().signatures = {{0, 0, certificateOf("CN=good")}, {0x19, 0, {}}};
  output = Variant::text(L"before");
  EXPECT_HR(0xE0690019, verify(bytes({1}), Variant()));
  ASSERT_EQ(2u, countOf(results));
  long status = 0;
  EXPECT_OK(objectsOf<ISignStatus>(results)[1]->get_status(&status));
  EXPECT_EQ(0x19, status);
  EXPECT_EQ(L"before", textOf(output));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_F(VerifyMemTest, ResultOneHasResultsButNoOutput) {
  reply().result = 1;
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(S_FALSE, verify(bytes({1}), Variant()));
  EXPECT_EQ(1u, countOf(results));
  EXPECT_EQ(VT_EMPTY, output.type());
}

TEST_F(VerifyMemTest, FailedVerificationDoesNotTakeTheOutputOver) {
  reply().result = 0x19;
  reply().output = {1, 2};
  EXPECT_HR(0xE0690019, verify(bytes({1}), Variant()));
  EXPECT_EQ(VT_EMPTY, output.type());
  engine().releaseOutstanding();
}

TEST_F(VerifyMemTest, EngineCodeWinsOverAFailureOfTheResults) {
  SubstituteFactory factory(__uuidof(SignStatus));
  factory.failAfter(0, E_NOINTERFACE);
  reply().result = 0x19;
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(0xE0690019, verify(bytes({1}), Variant()));
  EXPECT_EQ(VT_EMPTY, results.type());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_F(VerifyMemTest, FailureOfTheResultsKeepsTheOutput) {
  SubstituteFactory factory(__uuidof(SignStatus));
  factory.failAfter(0, E_NOINTERFACE);
  reply().output = {1};
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(E_NOINTERFACE, verify(bytes({1}), Variant()));
  EXPECT_EQ(VT_EMPTY, output.type());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeMem"));
}

TEST_F(VerifyMemTest, ResultsAreGivenBackBeforeTheOutput) {
  reply().output = {1};
  EXPECT_OK(verify(bytes({1}), Variant()));
  EXPECT_EQ((std::vector<std::string>{"QUIVO_VerifyMem", "QUIVO_FreeVerifyResult", "QUIVO_FreeMem"}), engine().names());
}

struct VerifyFileMethod {
  const char* function;
  HRESULT (STDMETHODCALLTYPE IQUIVO::*method)(IVerifyParam*, BSTR, BSTR, BSTR, VARIANT*);
};

void PrintTo(const VerifyFileMethod& row, std::ostream* out) { *out << row.function; }

class VerifyFileTest : public ContractTest, public ::testing::WithParamInterface<VerifyFileMethod> {
 protected:
  HRESULT verify(BSTR data, BSTR signIn, BSTR signOut) {
    return (quivo.get()->*GetParam().method)(param, data, signIn, signOut, results.out());
  }
  fake::Reply& reply() { return engine().on(GetParam().function); }
  const fake::Call& call() { return engine().only(GetParam().function); }

  Ptr<IQUIVO> quivo = openQuivo();
  Ptr<IVerifyParam> param = make<VerifyParam>();
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
  EXPECT_EQ(L"before", textOf(results));
}

TEST_P(VerifyFileTest, ResultsAreFilledOnSuccess) {
  reply().signatures = {{0, 0, fullCertificate()}};
  EXPECT_OK(verify(nullptr, Bstr(L"in"), nullptr));
  ASSERT_EQ(1u, countOf(results));
  Ptr<ICertificate> cert;
  EXPECT_OK(objectsOf<ISignStatus>(results)[0]->get_cert(cert.out()));
  expectFullCertificate(cert);
}

TEST_P(VerifyFileTest, ResultsAreFilledOnFailureToo) {
  reply().result = 0x19;
  reply().signatures = {{0x19, 0, {}}};
  EXPECT_HR(0xE0690019, verify(nullptr, Bstr(L"in"), nullptr));
  EXPECT_EQ(1u, countOf(results));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_P(VerifyFileTest, NoSignaturesAreAnEmptyArray) {
  EXPECT_OK(verify(nullptr, Bstr(L"in"), nullptr));
  EXPECT_EQ(0u, countOf(results));
}

TEST_P(VerifyFileTest, FailureOfTheResultsIsReturnedMapped) {
  SubstituteFactory factory(__uuidof(SignStatus));
  factory.failAfter(0, static_cast<HRESULT>(0x80070005));
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(kAccessDenied, verify(nullptr, Bstr(L"in"), nullptr));
  EXPECT_EQ(VT_EMPTY, results.type());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_P(VerifyFileTest, EngineCodeWinsOverAFailureOfTheResults) {
  SubstituteFactory factory(__uuidof(SignStatus));
  factory.failAfter(0, E_NOINTERFACE);
  reply().result = 1;
  reply().signatures = {{0, 0, {}}};
  EXPECT_HR(S_FALSE, verify(nullptr, Bstr(L"in"), nullptr));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
}

INSTANTIATE_TEST_SUITE_P(Methods, VerifyFileTest,
                         ::testing::Values(VerifyFileMethod{"QUIVO_VerifyFile", &IQUIVO::VerifyFile},
                                           VerifyFileMethod{"QUIVO_StrVerifyFile", &IQUIVO::StrVerifyFile}),
                         [](const auto& info) { return std::string(info.param.function); });

}  // namespace
