// Certificate requests and the check of the own certificate's extended key usages.
#include <clocale>

#include "support/certificates.h"
#include "support/records.h"

namespace {

using RequestTest = ContractTest;

TEST_F(RequestTest, FlagAndTemplateReachTheEngine) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  EXPECT_OK(certificate->put_subject(Bstr(L"CN=\x0411")));
  EXPECT_OK(certificate->put_keyUsage(Keyusage_NonRepudation));
  Variant request;
  EXPECT_OK(openQuivo()->CreateXmlRequest(static_cast<XmlRequest_Flag_t>(0x80000026), certificate, request.out(),
                                          VARIANT_FALSE));
  const fake::Call& call = engine().only("QUIVO_CreateXmlRequest");
  EXPECT_EQ(0x80000026u, static_cast<uint32_t>(call.value(1)));
  EXPECT_EQ("CN=\xC1", call.record(2).text(24));
  EXPECT_EQ(2u, call.record(2).u32(64));
  EXPECT_TRUE(call.record(3).allZero());
}

TEST_F(RequestTest, ChangedPartsOfTheTemplateLeaveNoFreedPointer) {
  Ptr<ICertificate> certificate = Make<ICertificate>();
  Ptr<IPolicy> policy = Make<IPolicy>();
  EXPECT_OK(policy->put_oid(Bstr(L"before")));
  EXPECT_OK(certificate->put_policies(ObjectArray({policy})));
  EXPECT_OK(policy->put_oid(Bstr(L"a text that is longer than the one it replaces")));
  EXPECT_EQ("a text that is longer than the one it replaces", RecordOf(certificate.get()).at(336).text(0));
}

class CheckOidTest : public ContractTest {
 protected:
  void SetUp() override { search().certificates = {ownWith({"1.2.643.1", "1.2.643.2"})}; }
  static fake::Certificate ownWith(std::vector<fake::Text> usages) {
    fake::Certificate own;
    own.extKeyUsage = std::move(usages);
    return own;
  }
  fake::Reply& search() { return engine().on("QUIVO_FindCert"); }
  HRESULT check(const std::wstring& oid) { return quivo->CheckOID(Bstr(oid), text.out()); }
  void expectNotPresent(const std::wstring& oid) {
    text = Variant();
    EXPECT_HR(0x80004005u, check(oid));
    EXPECT_EQ(L"OID " + oid + L" отсутствует в рабочем сертификате", TextOf(text));
  }

  Ptr<IQUIVO> quivo = openQuivo();
  Variant text;
};

TEST_F(CheckOidTest, PresentOidIsASuccess) {
  text = Variant::number(77);
  EXPECT_OK(check(L"1.2.643.1"));
  EXPECT_OK(check(L"1.2.643.2"));
  EXPECT_EQ(VT_I4, text.type());
}

TEST_F(CheckOidTest, OwnCertificateIsSearchedForItsUsages) {
  EXPECT_OK(check(L"1.2.643.1"));
  const fake::Snapshot& param = engine().only("QUIVO_FindCert").record(1);
  EXPECT_EQ(1u, param.u32(0));
  EXPECT_EQ(0x400u, MaskIn(param));
  EXPECT_EQ(0u, param.pointer(8));
  EXPECT_TRUE(TemplateIn(param).allZero());
  EXPECT_TRUE(engine().only("QUIVO_FindCert").record(2).allZero());
}

TEST_F(CheckOidTest, ResultIsGivenBack) {
  EXPECT_OK(check(L"1.2.643.1"));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(CheckOidTest, MissingOidIsExplained) { expectNotPresent(L"1.2.643.3"); }

TEST_F(CheckOidTest, ComparisonIsOfTheWholeString) {
  expectNotPresent(L"1.2.643.11");
  expectNotPresent(L"1.2.643.");
  expectNotPresent(L"1.2.643.1 ");
  expectNotPresent(L"");
}

TEST_F(CheckOidTest, ComparisonHasRegardToCase) {
  search().certificates = {ownWith({"Oid"})};
  expectNotPresent(L"oid");
  EXPECT_OK(check(L"Oid"));
}

TEST_F(CheckOidTest, CertificateWithoutUsagesHasNoOid) {
  search().certificates = {ownWith({})};
  expectNotPresent(L"1.2.643.1");
}

TEST_F(CheckOidTest, NoOwnCertificateIsExplained) {
  search().certificates.clear();
  EXPECT_HR(E_FAIL, check(L"1.2.643.1"));
  EXPECT_EQ(L"Не найден рабочий сертификат", TextOf(text));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(CheckOidTest, SeveralOwnCertificatesAreNoWorkingCertificate) {
  search().certificates = {ownWith({"1.2.643.1"}), ownWith({"1.2.643.1"})};
  EXPECT_HR(E_FAIL, check(L"1.2.643.1"));
  EXPECT_EQ(L"Не найден рабочий сертификат", TextOf(text));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(CheckOidTest, FailedSearchIsExplainedByTheEngine) {
  search() = {};
  search().result = 0x19;
  engine().on("QUIVO_GetErrorText").text = "engine text";
  EXPECT_HR(E_FAIL, check(L"1.2.643.1"));
  EXPECT_EQ(L"engine text", TextOf(text));
  EXPECT_EQ(0x19, engine().only("QUIVO_GetErrorText").number(0));
  EXPECT_EQ(0u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(CheckOidTest, LongOidCannotBeConverted) {
  EXPECT_HR(E_FAIL, check(std::wstring(1022, L'1')));
  EXPECT_EQ(L"Ошибка преобразования BSTR", TextOf(text));
  EXPECT_EQ((std::vector<std::string>{"QUIVO_FreeFindResult"}), engine().names());
  EXPECT_NE(0u, engine().last().value(0));
  EXPECT_TRUE(engine().last().record(1).allZero());
}

TEST_F(CheckOidTest, LongestOidIsComparedAndExplained) {
  const std::wstring longest(1021, L'1');
  expectNotPresent(longest);
  search().certificates = {ownWith({std::string(1021, '1')})};
  EXPECT_OK(check(longest));
}

TEST_F(CheckOidTest, CharactersOutsideTheLocaleCannotBeConverted) {
  std::setlocale(LC_ALL, "C");
  EXPECT_HR(E_FAIL, check(L"\x4E2D"));
  EXPECT_EQ(L"Ошибка преобразования BSTR", TextOf(text));
}

TEST_F(CheckOidTest, NullOidIsAFailure) {
  EXPECT_HR(E_FAIL, quivo->CheckOID(nullptr, text.out()));
  EXPECT_EQ(VT_BSTR, text.type());
}

TEST_F(CheckOidTest, TextIsOptional) {
  EXPECT_OK(quivo->CheckOID(Bstr(L"1.2.643.1"), nullptr));
  EXPECT_HR(E_FAIL, quivo->CheckOID(Bstr(L"x"), nullptr));
  EXPECT_HR(E_FAIL, quivo->CheckOID(Bstr(std::wstring(2000, L'1')), nullptr));
  search().certificates.clear();
  EXPECT_HR(E_FAIL, quivo->CheckOID(Bstr(L"x"), nullptr));
  search() = {};
  search().result = 5;
  EXPECT_HR(E_FAIL, quivo->CheckOID(Bstr(L"x"), nullptr));
}

TEST_F(CheckOidTest, TextIsOverwrittenWithoutBeingCleared) {
  Bstr kept(L"kept");
  VARIANT answer;
  V_VT(&answer) = VT_BSTR;
  V_BSTR(&answer) = kept;
  EXPECT_HR(E_FAIL, quivo->CheckOID(Bstr(L"x"), &answer));
  EXPECT_EQ(L"kept", kept.text());
  VariantClear(&answer);
}

TEST_F(CheckOidTest, EntryWithoutATextIsPassedOver) {
  search().certificates = {ownWith({fake::Text{}, "1.2.643.1"})};
  EXPECT_OK(check(L"1.2.643.1"));
}

}  // namespace
