// Searches: who is found under which flags and by which templates, and that there is no window without a display.
#include "store_fixture.h"

using namespace standin;

namespace {

class Searching : public StoreTest {};
class Display : public StoreTest {};

const std::string kBob = "emailAddress=bob@example.test, CN=Bob\\, Second, O=Example, C=RU";

}  // namespace

TEST_F(Searching, OwnCertificatesAreTheOnesWithKeys) {
  EXPECT_EQ(std::vector<std::string>{kBob}, find(open("bob"), WithFlags(1)));
  EXPECT_TRUE(find(open("", "store"), WithFlags(1)).empty());
  EXPECT_TRUE(find(openMinimal(), WithFlags(1)).empty());
}

TEST_F(Searching, ExpiredOwnCertificateIsFoundOnlyWithoutTheCheck) {
  EXPECT_TRUE(find(open("dave"), WithFlags(1)).empty());
  EXPECT_EQ(1u, find(open("dave"), WithFlags(1 | 0x10)).size());
}

TEST_F(Searching, OwnCertificateNeedsNoKnownIssuer) { EXPECT_EQ(1u, find(open("mallory"), WithFlags(1)).size()); }

TEST_F(Searching, OnlyGoodCertificatesAreFoundUnlessAllAreWanted) {
  const EngineSession session = open("alice");
  const std::vector<std::string> good = find(session, WithFlags(0));
  EXPECT_EQ(5u, good.size());  // root, middle, alice, bob, frank
  EXPECT_EQ(6u, find(session, WithFlags(0x20)).size());
  EXPECT_EQ(8u, find(session, WithFlags(0x30)).size());
  EXPECT_EQ(8u, find(session, WithFlags(2)).size());
  EXPECT_EQ(1u, find(session, WithFlags(0x800)).size());
}

TEST_F(Searching, TemplatesAreMatched) {
  const EngineSession session = open("alice");
  FindParamRecord param{};
  char subject[] = "O=Example,C=RU";
  param.certTemplate.subject = subject;
  EXPECT_TRUE(find(session, param).empty());
  param.flag = 0x200;
  EXPECT_EQ(std::vector<std::string>{kBob}, find(session, param));

  param = {};
  char whole[] = "emailaddress=BOB@example.test,CN=bob\\, second,O=example,C=ru";
  param.certTemplate.subject = whole;
  EXPECT_EQ(1u, find(session, param).size());

  param = {};
  char qualified[] =
      "countryName=RU, organizationName=Example, commonName=Bob\\, Second, emailAddress=bob@example.test";
  param.certTemplate.subject = qualified;
  EXPECT_EQ(1u, find(session, param).size());

  param = {};
  char address[] = "Bob@Example.test";
  param.certTemplate.subjectAltName.emailAddress = address;
  EXPECT_EQ(std::vector<std::string>{kBob}, find(session, param));

  param = {};
  char exchange[] = "ex-alice";
  param.certTemplate.fields = 0x280;
  param.certTemplate.keyUsage = 5;
  param.certTemplate.subjectAltName.exchange_address = exchange;
  EXPECT_EQ(1u, find(session, param).size());
  param.certTemplate.keyUsage = 2;
  EXPECT_TRUE(find(session, param).empty());
  // The mask leaves the address out of account.
  param.certTemplate.fields = 0x80;
  param.certTemplate.keyUsage = 5;
  EXPECT_EQ(2u, find(session, param).size());

  param = {};
  char usage[] = "1.2.643.99.1";
  char* usages[] = {usage};
  param.certTemplate.extKeyUsageCount = 1;
  param.certTemplate.extKeyUsage = usages;
  EXPECT_EQ(1u, find(session, param).size());
}

TEST_F(Searching, DemandedNameWithAnEmptyTextFindsNobody) {
  char nothing[] = "";
  FindParamRecord param{};
  param.certTemplate.fields = 0x280;
  param.certTemplate.keyUsage = 5;
  for (char* AltNameRecord::*text :
       {&AltNameRecord::emailAddress, &AltNameRecord::exchange_address, &AltNameRecord::extraName}) {
    param.certTemplate.subjectAltName = {};
    param.certTemplate.subjectAltName.*text = nothing;
    EXPECT_TRUE(find(open("alice"), param).empty());
  }
}

TEST_F(Searching, EmptyTextsWithoutAMaskAreNotSet) {
  char nothing[] = "";
  FindParamRecord param{};
  param.certTemplate.subjectAltName.emailAddress = nothing;
  EXPECT_EQ(5u, find(open("alice"), param).size());
}

TEST_F(Searching, NumbersAndHashesAreMatched) {
  const EngineSession session = open("alice");
  const Bytes encoded = Material("bob.cer");
  const DataBlob_t blob = BlobOf(encoded);
  CertificateRecord bob{};
  ASSERT_CODE(0, QUIVO_ParseCert(session, &blob, 0x7FFFF, &bob));

  FindParamRecord param{};
  param.certTemplate.issuer = bob.issuer;
  EXPECT_EQ(1u, find(session, param).size());
  param = {};
  param.certTemplate.keyId = bob.keyId;
  EXPECT_EQ(1u, find(session, param).size());
  param = {};
  param.certTemplate.certHash = bob.certHash;
  EXPECT_EQ(1u, find(session, param).size());
  param = {};
  char serial[] = "0x0a:00";
  param.certTemplate.serialNumber = serial;
  EXPECT_EQ(2u, find(session, param).size());
  param = {};
  CertIdRecord id{};
  id.type = 1;
  id.keyId = bob.keyId;
  param.mycert = &id;
  EXPECT_EQ(std::vector<std::string>{kBob}, find(session, param));
  QUIVO_FreeCert(session, &bob);
}

TEST_F(Searching, RecordsMayOutliveTheirArray) {
  const EngineSession session = open("alice");
  FindParamRecord param{};
  param.info = 0x7FFFF;
  FindResultRecord result{};
  ASSERT_CODE(0, QUIVO_FindCert(session, &param, &result));
  ASSERT_LT(1, result.count);
  std::vector<CertificateRecord> kept(result.certificates, result.certificates + result.count);
  EXPECT_CODE(0, QUIVO_FreeMem(session, result.certificates));
  for (CertificateRecord& record : kept) {
    EXPECT_NE(nullptr, record.subject);
    EXPECT_CODE(0, QUIVO_FreeCert(session, &record));
    EXPECT_EQ(nullptr, record.subject);
  }
}

TEST_F(Searching, NothingToChooseFromIsACancelledSelection) {
  FindParamRecord param = WithFlags(8);
  char nobody[] = "CN=nobody";
  param.certTemplate.subject = nobody;
  find(open("alice"), param, kSelectionCancelled);
}

TEST_F(Display, ThereIsNoneInTests) {
  const EngineSession session = open("alice");
  const Bytes certificate = Material("alice.cer");
  const Bytes crl = Material("root.crl");
  const DataBlob_t certificateBlob = BlobOf(certificate);
  const DataBlob_t crlBlob = BlobOf(crl);
  EXPECT_CODE(kNoDisplay, QUIVO_ShowCertificate(session, &certificateBlob));
  EXPECT_CODE(kNoDisplay, QUIVO_ShowCrl(session, &crlBlob));
  EXPECT_CODE(kCertificateDamaged, QUIVO_ShowCertificate(session, &crlBlob));
  EXPECT_CODE(kCrlDamaged, QUIVO_ShowCrl(session, &certificateBlob));
  find(session, WithFlags(8), kNoDisplay);
}
