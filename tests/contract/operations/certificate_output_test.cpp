// The certificate that a call hands out, in a variable that still holds an earlier one.
#include "contract/operations/calls.h"
#include "support/certificates.h"
#include "support/class_objects.h"

namespace {

struct CertificateOutput {
  const char* name;
  const char* function;
  /// Handed out even when the engine reports a failure.
  bool always;
  HRESULT (*call)(const Objects&, ICertificate** certificate);
};

void PrintTo(const CertificateOutput& row, std::ostream* out) { *out << row.name; }

const CertificateOutput kOutputs[]{
    {"ParseCert", "QUIVO_ParseCert", false,
     [](const Objects& o, ICertificate** out) { return o.quivo->ParseCert(bytes({1}), Field_All, out); }},
    {"DecryptMem", "QUIVO_DecryptMem", false,
     [](const Objects& o, ICertificate** out) {
       return o.quivo->DecryptMem(o.decrypt, bytes({1}), Variant().out(), out);
     }},
    {"DecryptFile", "QUIVO_DecryptFile", true,
     [](const Objects& o, ICertificate** out) {
       return o.quivo->DecryptFile(o.decrypt, Bstr(L"in"), Bstr(L"out"), out);
     }},
    {"StrDecryptFile", "QUIVO_StrDecryptFile", true,
     [](const Objects& o, ICertificate** out) {
       return o.quivo->StrDecryptFile(o.decrypt, Bstr(L"in"), Bstr(L"out"), out);
     }},
    {"StrDecryptFinalMem", "QUIVO_StrDecryptFinalMem", true,
     [](const Objects& o, ICertificate** out) { return o.quivo->StrDecryptFinalMem(o.decrypt, o.stream, out); }},
};

class CertificateOutputTest : public ContractTest, public ::testing::WithParamInterface<CertificateOutput> {
 protected:
  void SetUp() override { reply().certificate = certificateOf("CN=new"); }
  HRESULT run() { return GetParam().call(objects, &variable); }
  fake::Reply& reply() { return engine().on(GetParam().function); }

  Objects objects{openQuivo()};
  Ptr<ICertificate> former = make<Certificate>();
  /// Lends the former certificate: what is stored here is the caller's to release, what was here is not the call's.
  ICertificate* variable = former;
};

TEST_P(CertificateOutputTest, FormerCertificateIsOverwritten) {
  EXPECT_OK(run());
  Ptr<ICertificate> handedOut = Ptr<ICertificate>::adopt(variable);
  ASSERT_NE(former.get(), handedOut.get());
  EXPECT_EQ(L"CN=new", subjectOf(handedOut));
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
  EXPECT_EQ(GetParam().always, former.get() != variable);
  if (variable != former) Ptr<ICertificate>::adopt(variable);
  if (!GetParam().always) engine().releaseOutstanding();
}

TEST_P(CertificateOutputTest, EngineFailureAndCertificateThatCannotBeBuiltLeaveNoneOrTheFormer) {
  SubstituteFactory factory(__uuidof(Certificate));
  factory.failAfter(0, E_NOINTERFACE);
  reply().result = 0x19;
  EXPECT_HR(0xE0690019, run());
  EXPECT_EQ(GetParam().always ? nullptr : former.get(), variable);
  if (!GetParam().always) engine().releaseOutstanding();
}

INSTANTIATE_TEST_SUITE_P(Methods, CertificateOutputTest, ::testing::ValuesIn(kOutputs),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
