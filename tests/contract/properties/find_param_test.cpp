// The search template of FindParam.
#include "contract/properties/records.h"
#include "support/foreign_object.h"

namespace {

class FindParamTest : public ContractTest {
 protected:
  void SetUp() override { param_ = make<FindParam>(); }
  HRESULT put(ICertificate* certificate) { return param_->putref_certTemplate(certificate); }
  Ptr<ICertificate> get() {
    Ptr<ICertificate> certificate;
    EXPECT_OK(param_->get_certTemplate(certificate.out()));
    return certificate;
  }
  fake::Snapshot record() { return recordOf(param_.get()); }
  fake::Snapshot certTemplate() { return record().part(16, 408); }

 private:
  Ptr<IFindParam> param_;
};

Ptr<ICertificate> withSubject(const wchar_t* subject) {
  Ptr<ICertificate> certificate = make<Certificate>();
  EXPECT_OK(certificate->put_fields(Field_Subject));
  EXPECT_OK(certificate->put_subject(Bstr(subject)));
  return certificate;
}

TEST_F(FindParamTest, NewObjectHasAnEmptyTemplate) {
  EXPECT_EQ(nullptr, get().get());
  EXPECT_TRUE(record().allZero());
  EXPECT_EQ(432u, record().bytes.size());
}

TEST_F(FindParamTest, TemplateIsHeldByValue) {
  Ptr<ICertificate> certificate = withSubject(L"Иванов");
  EXPECT_OK(put(certificate));
  EXPECT_EQ(4u, certTemplate().u32(0));
  EXPECT_EQ("\xC8\xE2\xE0\xED\xEE\xE2", certTemplate().text(24));
  EXPECT_EQ(recordOf(certificate.get()).bytes, certTemplate().bytes);
}

TEST_F(FindParamTest, AssignedObjectIsTheOneThatIsRead) {
  Ptr<ICertificate> certificate = withSubject(L"x");
  EXPECT_OK(put(certificate));
  const ULONG held = certificate.references();
  EXPECT_EQ(certificate.get(), get().get());
  EXPECT_EQ(held, certificate.references());
}

TEST_F(FindParamTest, AnotherTemplateReplacesTheFirst) {
  Ptr<ICertificate> first = withSubject(L"first");
  EXPECT_OK(put(first));
  EXPECT_OK(put(withSubject(L"second")));
  EXPECT_EQ(1u, first.references());
  EXPECT_EQ("second", certTemplate().text(24));
}

TEST_F(FindParamTest, NothingReadsAsNothingWhileTheSearchUsesTheEarlier) {
  EXPECT_OK(put(withSubject(L"earlier")));
  EXPECT_OK(put(nullptr));
  EXPECT_EQ(nullptr, get().get());
  EXPECT_EQ("earlier", certTemplate().text(24));
}

TEST_F(FindParamTest, TemplateLivesAsLongAsItIsHeld) {
  EXPECT_OK(put(withSubject(L"held")));
  EXPECT_EQ("held", certTemplate().text(24));
}

TEST_F(FindParamTest, ChangedTemplateLeavesNoFreedPointer) {
  Ptr<ICertificate> certificate = withSubject(L"before");
  EXPECT_OK(put(certificate));
  EXPECT_OK(certificate->put_subject(Bstr(L"a text that is longer than the one it replaces")));
  EXPECT_EQ("a text that is longer than the one it replaces", certTemplate().text(24));
}

TEST_F(FindParamTest, ChangedAlternativeNameLeavesNoFreedPointer) {
  Ptr<ICertificate> certificate = make<Certificate>();
  Ptr<IAltName> name = make<AltName>();
  EXPECT_OK(name->put_emailAddress(Bstr(L"before@bank")));
  EXPECT_OK(certificate->putref_subjectAltName(name));
  EXPECT_OK(put(certificate));
  EXPECT_OK(name->put_emailAddress(Bstr(L"a text that is longer than the one it replaces")));
  EXPECT_EQ("a text that is longer than the one it replaces", certTemplate().text(200));
}

TEST_F(FindParamTest, MaskStandsBehindTheTemplate) {
  Ptr<IFindParam> param = make<FindParam>();
  EXPECT_OK(param->put_info(Field_AlgorithmOidFormat));
  EXPECT_EQ(0x80000000u, recordOf(param.get()).u32(424));
}

TEST_F(FindParamTest, ForeignTemplateIsRefusedUntouched) {
  EXPECT_OK(put(withSubject(L"kept")));
  ForeignObject foreign;
  EXPECT_HR(E_INVALIDARG, put(foreign.as<ICertificate>()));
  EXPECT_EQ(std::vector<int>{}, foreign.called());
  EXPECT_EQ(1, foreign.references());
  EXPECT_EQ("kept", certTemplate().text(24));
}

TEST_F(FindParamTest, ObjectOfAnotherClassIsRefused) {
  Ptr<IAltName> wrong = make<AltName>();
  EXPECT_HR(E_INVALIDARG, put(reinterpret_cast<ICertificate*>(wrong.get())));
}

TEST_F(FindParamTest, NullPointerForTheTemplateIsRefused) {
  EXPECT_HR(E_POINTER, make<FindParam>()->get_certTemplate(nullptr));
}

}  // namespace
