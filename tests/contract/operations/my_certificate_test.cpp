// The own certificate as Base64 text.
#include "support/certificates.h"
#include "support/records.h"

namespace {

class MyCertificateTest : public ContractTest {
 protected:
  void SetUp() override {
    fake::Certificate own;
    own.certEncoded = {0x30, 0x03, 0x02};
    search().certificates = {own};
    engine().on("QUIVO_EncodeMem").text = "MAMC";
  }
  fake::Reply& search() { return engine().on("QUIVO_FindCert"); }
  HRESULT ask(Variant& text) { return openQuivo()->GetMyCertB64(text.out()); }
};

TEST_F(MyCertificateTest, OwnCertificateIsSearchedForItsEncoding) {
  Variant text;
  EXPECT_OK(ask(text));
  const fake::Snapshot& param = engine().only("QUIVO_FindCert").record(1);
  EXPECT_EQ(1u, param.u32(0));
  EXPECT_EQ(0x10000u, MaskIn(param));
  EXPECT_EQ(0u, param.pointer(8));
  EXPECT_TRUE(TemplateIn(param).allZero());
  EXPECT_TRUE(engine().only("QUIVO_FindCert").record(2).allZero());
}

TEST_F(MyCertificateTest, EncodingOfTheFirstCertificateIsReturned) {
  fake::Certificate second;
  second.certEncoded = {0x31};
  search().certificates.push_back(second);
  Variant text;
  EXPECT_OK(ask(text));
  EXPECT_EQ(L"MAMC", TextOf(text));
  EXPECT_EQ((Bytes{0x30, 0x03, 0x02}), engine().only("QUIVO_EncodeMem").argument(1).target.bytes);
  EXPECT_EQ(3, engine().only("QUIVO_EncodeMem").number(2));
}

TEST_F(MyCertificateTest, ResultIsGivenBackAfterTheEncoding) {
  Variant text;
  Ptr<IQUIVO> quivo = openQuivo();
  EXPECT_OK(quivo->GetMyCertB64(text.out()));
  EXPECT_EQ((std::vector<std::string>{"QUIVO_FindCert", "QUIVO_EncodeMem", "QUIVO_FreeFindResult"}), engine().names());
}

TEST_F(MyCertificateTest, FailedSearchIsReturnedMapped) {
  search() = {};
  search().result = 5;
  Variant text = Variant::number(77);
  EXPECT_HR(0xE0690005, ask(text));
  EXPECT_EQ(VT_I4, text.type());
  EXPECT_EQ(0u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(MyCertificateTest, NoCertificateIsAFailure) {
  search() = {};
  Variant text = Variant::number(77);
  EXPECT_HR(0x80004005u, ask(text));
  EXPECT_EQ(VT_I4, text.type());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(MyCertificateTest, NegativeCountIsNoCertificate) {
  search() = {};
  search().findCount = -1;
  Variant text;
  EXPECT_HR(E_FAIL, ask(text));
}

TEST_F(MyCertificateTest, FailedEncodingIsReturnedAndTheResultGivenBack) {
  engine().on("QUIVO_EncodeMem").result = static_cast<int32_t>(0xE0700042);
  Variant text;
  EXPECT_HR(0xE0700042, ask(text));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(MyCertificateTest, FailedEncodingOfTheWin32FacilityIsRebased) {
  engine().on("QUIVO_EncodeMem").result = static_cast<int32_t>(0x80070057);
  Variant text;
  EXPECT_HR(0xE0690057, ask(text));
}

TEST_F(MyCertificateTest, PositiveResultOfTheEncodingIsASuccess) {
  engine().on("QUIVO_EncodeMem").result = 4;
  Variant text;
  EXPECT_OK(ask(text));
  EXPECT_EQ(L"MAMC", TextOf(text));
}

TEST_F(MyCertificateTest, BufferThatCannotBeAllocatedIsReportedUnmapped) {
  search().during = [] { Module::get().failAllocation(0); };
  Variant text;
  EXPECT_HR(0x8007000Eu, ask(text));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(MyCertificateTest, TextThatCannotBeConvertedIsReportedMapped) {
  engine().on("QUIVO_EncodeMem").during = [] { Module::get().failAllocation(0); };
  Variant text = Variant::number(77);
  EXPECT_HR(kOutOfMemory, ask(text));
  EXPECT_EQ(VT_I4, text.type());
}

TEST_F(MyCertificateTest, NullPointerIsRefusedAfterTheSearch) {
  EXPECT_HR(kInvalidArgument, openQuivo()->GetMyCertB64(nullptr));
  EXPECT_EQ(1u, engine().count("QUIVO_FindCert"));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeFindResult"));
}

TEST_F(MyCertificateTest, MissingCertificateIsReportedBeforeTheNullPointer) {
  search() = {};
  EXPECT_HR(E_FAIL, openQuivo()->GetMyCertB64(nullptr));
}

TEST_F(MyCertificateTest, VariantIsOverwrittenWithoutBeingCleared) {
  Bstr kept(L"kept");
  VARIANT text;
  V_VT(&text) = VT_BSTR;
  V_BSTR(&text) = kept;
  EXPECT_OK(openQuivo()->GetMyCertB64(&text));
  EXPECT_EQ(L"kept", kept.text());
  VariantClear(&text);
}

TEST_F(MyCertificateTest, CertificateWithoutAnEncodingGivesAnEmptyText) {
  search().certificates = {CertificateOf("CN=x")};
  engine().on("QUIVO_EncodeMem").text = "";
  Variant text;
  EXPECT_OK(ask(text));
  EXPECT_EQ(L"", TextOf(text));
}

}  // namespace
