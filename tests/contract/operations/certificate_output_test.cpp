// The certificate that a call hands out, in a variable that still holds an earlier one.
#include "support/certificates.h"
#include "support/class_objects.h"
#include "support/operations.h"

namespace {

class CertificateOutputTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  void SetUp() override { reply().certificate = CertificateOf("CN=new"); }
  HRESULT run() { return GetParam().call(objects, &variable); }
  fake::Reply& reply() { return engine().on(GetParam().function); }

  Objects objects{openQuivo()};
  Ptr<ICertificate> former = Make<ICertificate>();
  /// Lends the former certificate: what is stored here is the caller's to release, what was here is not the call's.
  ICertificate* variable = former;
};

TEST_P(CertificateOutputTest, FormerCertificateIsOverwritten) {
  EXPECT_OK(run());
  Ptr<ICertificate> handedOut = Ptr<ICertificate>::adopt(variable);
  ASSERT_NE(former.get(), handedOut.get());
  EXPECT_EQ(L"CN=new", SubjectOf(handedOut));
  EXPECT_EQ(1u, former.references());
}

TEST_P(CertificateOutputTest, CertificateThatCannotBeBuiltLeavesNone) {
  for (const GUID& failing : {__uuidof(Certificate), __uuidof(AltName)}) {
    SubstituteFactory factory(failing);
    factory.failAfter(0, E_NOINTERFACE);
    variable = former;
    EXPECT_HR(E_NOINTERFACE, run());
    EXPECT_EQ(nullptr, variable);
    EXPECT_EQ(1u, former.references());
  }
}

TEST_P(CertificateOutputTest, EngineFailureLeavesTheVariableOrHandsOutWhatThereIs) {
  reply().result = 0x19;
  EXPECT_HR(0xE0690019, run());
  EXPECT_EQ(GetParam().isAlwaysWritten(), former.get() != variable);
  if (variable != former) Ptr<ICertificate>::adopt(variable);
  if (!GetParam().isAlwaysWritten()) engine().releaseOutstanding();
}

TEST_P(CertificateOutputTest, EngineFailureAndCertificateThatCannotBeBuiltLeaveNoneOrTheFormer) {
  SubstituteFactory factory(__uuidof(Certificate));
  factory.failAfter(0, E_NOINTERFACE);
  reply().result = 0x19;
  EXPECT_HR(0xE0690019, run());
  EXPECT_EQ(GetParam().isAlwaysWritten() ? nullptr : former.get(), variable);
  if (!GetParam().isAlwaysWritten()) engine().releaseOutstanding();
}

INSTANTIATE_TEST_SUITE_P(Methods, CertificateOutputTest, ::testing::ValuesIn(OutputsOf(Output::kCertificate)),
                         NameOfRow<OperationArgument>);

}  // namespace
