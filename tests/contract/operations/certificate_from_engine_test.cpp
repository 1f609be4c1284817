// Certificate objects made from the engine's records.
#include "support/certificates.h"
#include "support/class_objects.h"
#include "support/records.h"

namespace {

class CertificateFromEngineTest : public ContractTest {
 protected:
  HRESULT parse(const fake::Certificate& certificate, Ptr<ICertificate>& parsed) {
    engine().on("QUIVO_ParseCert").certificate = certificate;
    return openQuivo()->ParseCert(Variant(), Field_All, parsed.out());
  }
  Ptr<ICertificate> parse(const fake::Certificate& certificate) {
    Ptr<ICertificate> parsed;
    EXPECT_OK(parse(certificate, parsed));
    return parsed;
  }
};

TEST_F(CertificateFromEngineTest, EveryFieldIsTakenOver) {
  // The engine's memory is overwritten when it is given back: what is read here are copies.
  ExpectFullCertificate(parse(FullCertificate()));
}

TEST_F(CertificateFromEngineTest, RecordOfTheObjectEqualsTheEnginesOne) {
  Ptr<ICertificate> parsed = parse(FullCertificate());
  const fake::Snapshot record = RecordOf(parsed.get());
  EXPECT_EQ(0x4007FFFFu, record.u32(0));
  EXPECT_EQ("CN=\xD3\xD6", record.text(8));
  EXPECT_EQ("GOST", record.text(32));
  EXPECT_EQ(86400u, record.u32(40));
  EXPECT_EQ(0u, record.u32(76));
  EXPECT_EQ("issuer-14", record.text(80 + 112));
  EXPECT_EQ("subject-0", record.text(200));
  EXPECT_EQ("key-id", record.text(320));
  EXPECT_EQ(2, record.i32(328));
  EXPECT_EQ("1.2.2", record.at(336).text(32));
  EXPECT_EQ(3, record.i32(344));
  EXPECT_EQ("1.3.6.2", record.at(352).text(16));
  EXPECT_EQ(0u, record.at(352).pointer(8));
  EXPECT_EQ(2, record.i32(360));
  EXPECT_EQ((Bytes{4, 5, 6}), record.at(368).blob(16));
  EXPECT_EQ((Bytes{0x30, 0x82, 0x00}), record.blob(376));
  EXPECT_EQ((Bytes{0xAA, 0xBB}), record.blob(392));
}

TEST_F(CertificateFromEngineTest, EmptyRecordShowsEmptyValues) {
  Ptr<ICertificate> parsed = parse({});
  Variant value;
  DATE date = 0;
  EXPECT_EQ(L"", TextOf(parsed.get(), &ICertificate::get_issuer));
  EXPECT_OK(parsed->get_notBefore(&date));
  EXPECT_EQ(25569.0, date);
  EXPECT_OK(parsed->get_certHash(value.out()));
  EXPECT_EQ(VT_EMPTY, value.type());
  EXPECT_EQ(0u, RecordOf(parsed.get()).pointer(384));
  EXPECT_EQ(0u, RecordOf(parsed.get()).pointer(400));
  EXPECT_OK(parsed->get_policies(value.out()));
  EXPECT_EQ(0u, ObjectsOf(value).size());
  EXPECT_OK(parsed->get_extKeyUsage(value.out()));
  EXPECT_EQ(0u, StringsOf(value).size());
}

TEST_F(CertificateFromEngineTest, AlternativeNamesAlwaysExist) {
  fake::Certificate onlyIssuer;
  onlyIssuer.fields = 2;
  onlyIssuer.issuer = "CN=CA";
  Ptr<ICertificate> parsed = parse(onlyIssuer);
  Ptr<IAltName> issuerName, subjectName;
  EXPECT_OK(parsed->get_issuerAltName(issuerName.out()));
  EXPECT_OK(parsed->get_subjectAltName(subjectName.out()));
  ASSERT_NE(nullptr, issuerName.get());
  ASSERT_NE(nullptr, subjectName.get());
  EXPECT_NE(issuerName.get(), subjectName.get());
  EXPECT_EQ(L"", TextOf(issuerName.get(), &IAltName::get_emailAddress));
  EXPECT_EQ(L"", TextOf(subjectName.get(), &IAltName::get_exchange_address));
}

TEST_F(CertificateFromEngineTest, MaskIsNotConsulted) {
  fake::Certificate certificate = FullCertificate();
  certificate.fields = 0;
  ExpectFullCertificate(parse(certificate), 0);
}

TEST_F(CertificateFromEngineTest, EmptyStringsStayEmptyStrings) {
  Ptr<ICertificate> parsed = parse(CertificateOf(""));
  EXPECT_EQ("", RecordOf(parsed.get()).text(24));
}

TEST_F(CertificateFromEngineTest, CallerGetsTheOnlyReference) {
  Ptr<ICertificate> parsed = parse(FullCertificate());
  EXPECT_EQ(1u, parsed.references());
}

TEST_F(CertificateFromEngineTest, ElementsAreHeldByTheCertificateAlone) {
  Ptr<ICertificate> parsed = parse(FullCertificate());
  std::vector<Ptr<IDispatch>> found;
  {
    Variant policies;
    EXPECT_OK(parsed->get_policies(policies.out()));
    found = ObjectsOf(policies);
  }
  parsed.reset();
  for (const auto& policy : found) EXPECT_EQ(1u, policy.references());
}

TEST_F(CertificateFromEngineTest, ObjectsAreCreatedThroughCom) {
  SubstituteFactory certificates(__uuidof(Certificate)), names(__uuidof(AltName)), policies(__uuidof(Policy)),
      extensions(__uuidof(Extension));
  parse(FullCertificate());
  EXPECT_EQ(1, certificates.created());
  EXPECT_EQ(2, names.created());
  EXPECT_EQ(2, policies.created());
  EXPECT_EQ(2, extensions.created());
  EXPECT_TRUE(certificates.asked() == __uuidof(ICertificate));
  EXPECT_TRUE(names.asked() == __uuidof(IAltName));
}

TEST_F(CertificateFromEngineTest, FailingCreationIsReturnedAndNothingElse) {
  const std::pair<CLSID, int> creations[]{
      {__uuidof(Certificate), 1}, {__uuidof(AltName), 2}, {__uuidof(Policy), 2}, {__uuidof(Extension), 2}};
  for (const auto& [clsid, count] : creations) {
    for (int succeeding = 0; succeeding < count; ++succeeding) {
      SubstituteFactory factory(clsid);
      factory.failAfter(succeeding, CO_E_SERVER_EXEC_FAILURE);
      Ptr<ICertificate> parsed;
      EXPECT_HR(CO_E_SERVER_EXEC_FAILURE, parse(FullCertificate(), parsed));
      EXPECT_EQ(nullptr, parsed.get());
      EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
    }
  }
}

TEST_F(CertificateFromEngineTest, EveryAllocationFailureIsReported) {
  const fake::Certificate full = FullCertificate();
  for (int succeeding = 0; succeeding < 500; ++succeeding) {
    Ptr<ICertificate> parsed;
    engine().on("QUIVO_ParseCert").during = [&] { Module::get().failAllocation(succeeding); };
    const HRESULT result = parse(full, parsed);
    const bool failed = Module::get().allocationFailed();
    Module::get().failAllocation(-1);
    EXPECT_EQ(std::vector<std::string>{}, engine().outstanding()) << succeeding;
    if (!failed) {
      EXPECT_OK(result);
      EXPECT_GT(succeeding, 40) << "so many strings alone";
      return;
    }
    EXPECT_HR(kOutOfMemory, result) << succeeding;
    EXPECT_EQ(nullptr, parsed.get()) << succeeding;
  }
  FAIL() << "never succeeded";
}

}  // namespace
