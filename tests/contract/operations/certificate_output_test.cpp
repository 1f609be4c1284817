// The certificate that a call hands out, in a variable that still holds an earlier one.
#include "support/certificates.h"
#include "support/operations.h"

namespace {

class CertificateOutputTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  void SetUp() override { reply().certificate = CertificateOf("CN=new"); }
  HRESULT run() { return GetParam().call(objects, &variable); }
  fake::Reply& reply() { return engine().on(GetParam().function); }
  /// What the variable received.
  Ptr<ICertificate> handedOut() { return Ptr<ICertificate>::adopt(variable == former ? nullptr : variable); }
  std::string release() {
    return GetParam().function == "QUIVO_ParseCert" ? "QUIVO_FreeCert" : "QUIVO_FreeDecryptResult";
  }

  Objects objects{openQuivo()};
  Ptr<ICertificate> former = Make<ICertificate>();
  /// Lends the former certificate: what is stored here is the caller's to release, what was here is not the call's.
  ICertificate* variable = former;
};

TEST_P(CertificateOutputTest, EveryFieldIsHandedOutInPlaceOfTheFormerCertificate) {
  reply().certificate = FullCertificate();
  EXPECT_OK(run());
  Ptr<ICertificate> certificate = handedOut();
  ASSERT_NE(nullptr, certificate.get());
  ExpectFullCertificate(certificate);
  EXPECT_EQ(1u, certificate.references());
  EXPECT_EQ(1u, former.references());
}

TEST_P(CertificateOutputTest, ResultIsZeroBeforeTheCallAndGivenBackAfterIt) {
  EXPECT_OK(run());
  const fake::Argument& result = engine().only(GetParam().function).argument(GetParam().argument);
  EXPECT_TRUE(result.target.allZero());
  EXPECT_EQ(result.value, engine().only(release()).value(1));
  handedOut();
}

TEST_P(CertificateOutputTest, NoCertificateIsAnEmptyOne) {
  reply().certificate.reset();
  EXPECT_OK(run());
  Ptr<ICertificate> certificate = handedOut();
  ASSERT_NE(nullptr, certificate.get());
  EXPECT_EQ(L"", SubjectOf(certificate));
}

TEST_P(CertificateOutputTest, CertificateThatCannotBeBuiltLeavesNone) {
  for (const GUID& failing : {__uuidof(Certificate), __uuidof(AltName)}) {
    for (const auto& [failure, mapped] : {std::pair{E_NOINTERFACE, 0x80004002u}, {E_ACCESSDENIED, kAccessDenied}}) {
      SubstituteFactory factory(failing);
      factory.failAfter(0, failure);
      variable = former;
      engine().forgetCalls();
      EXPECT_HR(mapped, run());
      EXPECT_EQ(nullptr, variable);
      EXPECT_EQ(1u, former.references());
      EXPECT_EQ(1u, engine().count(release()));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Methods, CertificateOutputTest, ::testing::ValuesIn(OutputsOf(Output::kCertificate)),
                         NameOfRow<OperationArgument>);

/// The methods whose certificate exists only after a success.
using CertificateOfSuccessTest = CertificateOutputTest;

TEST_P(CertificateOfSuccessTest, EngineResultThatIsNoSuccessLeavesTheVariable) {
  for (const auto& [code, expected] : {std::pair{0x19, 0xE0690019u}, {1, 1u}}) {
    reply().result = code;
    EXPECT_HR(expected, run());
    EXPECT_EQ(former.get(), variable);
  }
  EXPECT_EQ(0u, engine().count(release()));
  engine().releaseOutstanding();
}

INSTANTIATE_TEST_SUITE_P(Methods, CertificateOfSuccessTest,
                         ::testing::ValuesIn(Where(OutputsOf(Output::kCertificate),
                                                   [](const auto& row) { return !row.isAlwaysWritten(); })),
                         NameOfRow<OperationArgument>);

/// The methods that hand out the recipient's certificate whatever the engine returns.
using CertificateOfFailureTest = CertificateOutputTest;

TEST_P(CertificateOfFailureTest, EngineFailureHandsOutWhatThereIs) {
  reply().result = 0x19;
  EXPECT_HR(0xE0690019, run());
  EXPECT_EQ(L"CN=new", SubjectOf(handedOut()));
  variable = former;
  reply().certificate.reset();
  EXPECT_HR(0xE0690019, run());
  EXPECT_EQ(L"", SubjectOf(handedOut()));
  EXPECT_EQ(2u, engine().count(release()));
}

TEST_P(CertificateOfFailureTest, EngineCodeWinsOverAFailureOfTheCertificate) {
  SubstituteFactory factory(__uuidof(Certificate));
  factory.failAfter(0, E_NOINTERFACE);
  reply().result = 0x19;
  EXPECT_HR(0xE0690019, run());
  EXPECT_EQ(nullptr, variable);
  EXPECT_EQ(1u, engine().count(release()));
}

INSTANTIATE_TEST_SUITE_P(Methods, CertificateOfFailureTest,
                         ::testing::ValuesIn(Where(OutputsOf(Output::kCertificate),
                                                   [](const auto& row) { return row.isAlwaysWritten(); })),
                         NameOfRow<OperationArgument>);

}  // namespace
