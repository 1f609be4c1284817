// The alternative names of a certificate.
#include "contract/properties/records.h"
#include "support/foreign_object.h"

namespace {

struct AltNameProperty {
  const char* name;
  HRESULT (STDMETHODCALLTYPE ICertificate::*get)(IAltName**);
  HRESULT (STDMETHODCALLTYPE ICertificate::*put)(IAltName*);
  size_t offset;
};

void PrintTo(const AltNameProperty& row, std::ostream* out) { *out << row.name; }

Ptr<IAltName> withDns(const wchar_t* dns) {
  Ptr<IAltName> name = make<AltName>();
  EXPECT_OK(name->put_DNS(Bstr(dns)));
  return name;
}

class AltNamePropertyTest : public ContractTest, public ::testing::WithParamInterface<AltNameProperty> {
 protected:
  void SetUp() override { certificate_ = make<Certificate>(); }
  HRESULT put(IAltName* name) { return (certificate_.get()->*GetParam().put)(name); }
  Ptr<IAltName> get() {
    Ptr<IAltName> name;
    EXPECT_OK((certificate_.get()->*GetParam().get)(name.out()));
    return name;
  }
  fake::Snapshot record() { return recordOf(certificate_.get()).part(GetParam().offset, 120); }
  std::string dns() { return record().text(8); }

 private:
  Ptr<ICertificate> certificate_;
};

TEST_P(AltNamePropertyTest, NewCertificateHasNone) {
  EXPECT_EQ(nullptr, get().get());
  EXPECT_TRUE(record().allZero());
}

TEST_P(AltNamePropertyTest, AssignedNameIsTheOneThatIsRead) {
  Ptr<IAltName> name = withDns(L"host");
  EXPECT_OK(put(name));
  EXPECT_EQ(name.get(), get().get());
}

TEST_P(AltNamePropertyTest, WholeRecordStandsInTheCertificate) {
  Ptr<IAltName> name = withDns(L"host");
  EXPECT_OK(name->put_emailAddress(Bstr(L"a@b")));
  EXPECT_OK(name->put_exchange_address(Bstr(L"exchange")));
  EXPECT_OK(putExtraName(name, Bstr(L"extra")));
  EXPECT_OK(put(name));
  EXPECT_EQ("a@b", record().text(0));
  EXPECT_EQ("host", record().text(8));
  EXPECT_EQ("exchange", record().text(104));
  EXPECT_EQ("extra", record().text(112));
}

TEST_P(AltNamePropertyTest, NameLivesAsLongAsItIsHeld) {
  EXPECT_OK(put(withDns(L"host")));
  EXPECT_EQ("host", dns());
}

TEST_P(AltNamePropertyTest, ReferencesAreHeldAndGivenBack) {
  Ptr<IAltName> name = withDns(L"host");
  EXPECT_OK(put(name));
  EXPECT_GT(name.references(), 1u);
  EXPECT_OK(put(withDns(L"other")));
  EXPECT_EQ(1u, name.references());
}

TEST_P(AltNamePropertyTest, NothingReadsAsNothingWhileTheRecordKeepsTheCopy) {
  EXPECT_OK(put(withDns(L"earlier")));
  EXPECT_OK(put(nullptr));
  EXPECT_EQ(nullptr, get().get());
  EXPECT_EQ("earlier", dns());
}

TEST_P(AltNamePropertyTest, LaterChangeLeavesNoFreedPointer) {
  Ptr<IAltName> name = withDns(L"before");
  EXPECT_OK(put(name));
  EXPECT_OK(name->put_DNS(Bstr(L"a text that is longer than the one it replaces")));
  EXPECT_EQ("a text that is longer than the one it replaces", dns());
}

TEST_P(AltNamePropertyTest, LaterChangeAfterNothingLeavesNoFreedPointer) {
  Ptr<IAltName> name = withDns(L"before");
  EXPECT_OK(put(name));
  EXPECT_OK(put(nullptr));
  EXPECT_OK(name->put_DNS(Bstr(L"a text that is longer than the one it replaces")));
  const std::string seen = dns();
  EXPECT_TRUE(seen == "before" || seen == "a text that is longer than the one it replaces") << seen;
}

TEST_P(AltNamePropertyTest, ForeignObjectIsRefusedUntouched) {
  EXPECT_OK(put(withDns(L"kept")));
  ForeignObject foreign;
  EXPECT_HR(E_INVALIDARG, put(foreign.as<IAltName>()));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_EQ(1, foreign.references());
  EXPECT_EQ("kept", dns());
}

TEST_P(AltNamePropertyTest, ObjectOfAnotherClassIsRefused) {
  Ptr<ICertId> wrong = make<CertId>();
  EXPECT_HR(E_INVALIDARG, put(reinterpret_cast<IAltName*>(wrong.get())));
}

TEST_P(AltNamePropertyTest, NullPointerForTheNameIsRefused) {
  Ptr<ICertificate> certificate = make<Certificate>();
  EXPECT_HR(E_POINTER, (certificate.get()->*GetParam().get)(nullptr));
}

INSTANTIATE_TEST_SUITE_P(Properties, AltNamePropertyTest,
                         ::testing::Values(AltNameProperty{"issuerAltName", &ICertificate::get_issuerAltName,
                                                           &ICertificate::putref_issuerAltName, 80},
                                           AltNameProperty{"subjectAltName", &ICertificate::get_subjectAltName,
                                                           &ICertificate::putref_subjectAltName, 200}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
