// The store: searches, additions, import and export, requests, display.
#include <windows.h>

#include <algorithm>
#include <cstring>

#include "engine_test.h"

using namespace standin;

namespace {

class StoreTest : public EngineTest {
 protected:
  /// The subjects found.
  std::vector<std::string> find(EngineSession session, FindParamRecord param, int32_t expected = 0) {
    param.info = 4;
    FindResultRecord result{};
    EXPECT_CODE(expected, QUIVO_FindCert(session, &param, &result));
    std::vector<std::string> subjects;
    for (int32_t i = 0; i < result.count; ++i) subjects.push_back(result.certificates[i].subject);
    EXPECT_CODE(0, QUIVO_FreeFindResult(session, &result));
    return subjects;
  }

  static int32_t add(EngineSession session, const Bytes& encoded) {
    const SignParamRecord addition{};
    const DataBlob_t blob = blobOf(encoded);
    return QUIVO_AddCertificate(session, &addition, &blob);
  }
  static int32_t addCrl(EngineSession session, const Bytes& encoded) {
    const SignParamRecord addition{};
    const DataBlob_t blob = blobOf(encoded);
    return QUIVO_AddCRL(session, &addition, &blob);
  }
  Bytes exported(EngineSession session, uint32_t flags, const CertIdRecord* id, int32_t expected = 0) {
    const SignParamRecord param{flags, id};
    DataBlob_t out{};
    EXPECT_CODE(expected, QUIVO_ExportMem(session, &param, &out));
    return take(session, out);
  }
  static int32_t import(EngineSession session, uint32_t flags, const Bytes& bytes) {
    const SignParamRecord param{flags, nullptr};
    const DataBlob_t blob = blobOf(bytes);
    return QUIVO_ImportMem(session, &param, &blob);
  }
};

class Searching : public StoreTest {};
class Store : public StoreTest {};
class Requests : public StoreTest {};
class Display : public StoreTest {};

FindParamRecord withFlags(uint32_t flags) {
  FindParamRecord param{};
  param.flag = flags;
  return param;
}

const std::string kBob = "emailAddress=bob@example.test, CN=Bob\\, Second, O=Example, C=RU";

}  // namespace

TEST_F(Searching, OwnCertificatesAreTheOnesWithKeys) {
  EXPECT_EQ(std::vector<std::string>{kBob}, find(open("bob"), withFlags(1)));
  EXPECT_TRUE(find(open("", "store"), withFlags(1)).empty());
  EXPECT_TRUE(find(openMinimal(), withFlags(1)).empty());
}

TEST_F(Searching, ExpiredOwnCertificateIsFoundOnlyWithoutTheCheck) {
  EXPECT_TRUE(find(open("dave"), withFlags(1)).empty());
  EXPECT_EQ(1u, find(open("dave"), withFlags(1 | 0x10)).size());
}

TEST_F(Searching, OwnCertificateNeedsNoKnownIssuer) { EXPECT_EQ(1u, find(open("mallory"), withFlags(1)).size()); }

TEST_F(Searching, OnlyGoodCertificatesAreFoundUnlessAllAreWanted) {
  const EngineSession session = open("alice");
  const std::vector<std::string> good = find(session, withFlags(0));
  EXPECT_EQ(5u, good.size());  // root, middle, alice, bob, frank
  EXPECT_EQ(6u, find(session, withFlags(0x20)).size());
  EXPECT_EQ(8u, find(session, withFlags(0x30)).size());
  EXPECT_EQ(8u, find(session, withFlags(2)).size());
  EXPECT_EQ(1u, find(session, withFlags(0x800)).size());
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

TEST_F(Searching, NumbersAndHashesAreMatched) {
  const EngineSession session = open("alice");
  const Bytes encoded = material("bob.cer");
  const DataBlob_t blob = blobOf(encoded);
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
  FindParamRecord param = withFlags(8);
  char nobody[] = "CN=nobody";
  param.certTemplate.subject = nobody;
  find(open("alice"), param, kSelectionCancelled);
}

TEST_F(Display, ThereIsNoneInTests) {
  const EngineSession session = open("alice");
  const Bytes certificate = material("alice.cer");
  const Bytes crl = material("root.crl");
  const DataBlob_t certificate_blob = blobOf(certificate);
  const DataBlob_t crl_blob = blobOf(crl);
  EXPECT_CODE(kNoDisplay, QUIVO_ShowCertificate(session, &certificate_blob));
  EXPECT_CODE(kNoDisplay, QUIVO_ShowCrl(session, &crl_blob));
  EXPECT_CODE(kCertificateDamaged, QUIVO_ShowCertificate(session, &crl_blob));
  EXPECT_CODE(kCrlDamaged, QUIVO_ShowCrl(session, &certificate_blob));
  find(session, withFlags(8), kNoDisplay);
}

TEST_F(Store, AddedCertificateIsKnownAndKept) {
  const std::string folder = copyOfStore("roots", "add");
  const EngineSession session = openIn("alice", folder);
  const Bytes message = sign(open("bob"), 0, bytesOf("text"));
  EXPECT_CODE(kSignerUnknown, verify(session, message).code);
  EXPECT_CODE(0, add(session, material("bob.cer")));
  EXPECT_CODE(0, add(session, material("bob.cer")));
  EXPECT_CODE(0, verify(session, message).code);
  EXPECT_CODE(0, verify(openIn("alice", folder), message).code);
}

TEST_F(Store, AddedRevocationListCounts) {
  const EngineSession session = openIn("alice", copyOfStore("roots", "addcrl"));
  const Bytes message = sign(open("carol"), kSendCertificate, bytesOf("text"));
  EXPECT_CODE(0, verify(session, message).code);
  EXPECT_CODE(0, addCrl(session, material("root.crl")));
  EXPECT_CODE(kRevoked, verify(session, message).code);
}

TEST_F(Store, OlderAndForgedListsAreRefused) {
  const EngineSession session = openIn("alice", copyOfStore("roots", "oldcrl"));
  EXPECT_CODE(kCrlForged, addCrl(session, material("forged.crl")));
  EXPECT_CODE(0, addCrl(session, material("root.crl")));
  EXPECT_CODE(0, addCrl(session, material("root.crl")));
  EXPECT_CODE(kCrlOlder, addCrl(session, material("old.crl")));
  EXPECT_CODE(kCrlOlder, import(session, 0, material("old.crl")));
  EXPECT_CODE(0, import(session, 16, material("old.crl")));
}

TEST_F(Store, OtherBytesAreNotAdded) {
  const EngineSession session = openIn("alice", copyOfStore("roots", "bad"));
  EXPECT_CODE(kCertificateDamaged, add(session, material("root.crl")));
  EXPECT_CODE(kCertificateDamaged, add(session, {}));
  EXPECT_CODE(kCrlDamaged, addCrl(session, material("root.cer")));
  EXPECT_CODE(kNothingToImport, import(session, 0, material("data.bin")));
  EXPECT_CODE(kNothingToImport, import(session, 4, material("bob.cer")));
  EXPECT_CODE(kNothingToImport, import(session, 2, material("root.crl")));
  EXPECT_CODE(kNoStore, add(openMinimal(), material("bob.cer")));
}

TEST_F(Store, NamedOwnCertificateMustExist) {
  const EngineSession session = openIn("alice", copyOfStore("roots", "named"));
  char key_id[] = "00112233";
  CertIdRecord id{};
  id.type = 1;
  id.keyId = key_id;
  const SignParamRecord addition{0, &id};
  const Bytes encoded = material("bob.cer");
  const DataBlob_t blob = blobOf(encoded);
  EXPECT_CODE(kOwnCertificateNotFound, QUIVO_AddCertificate(session, &addition, &blob));
}

TEST_F(Store, WholeStoreTravelsFromOneToAnother) {
  for (uint32_t flags : {0u, 2u}) {
    const Bytes bundle = exported(open("", "store"), flags, nullptr);
    EXPECT_EQ(flags == 0 ? '-' : 0x30, bundle.at(0));
    const std::string folder = scratchPath("bundle" + std::to_string(flags));
    CreateDirectoryA(folder.c_str(), nullptr);
    const EngineSession session = openIn("alice", folder);
    EXPECT_CODE(0, import(session, 2 | 4, bundle));
    EXPECT_EQ(8u, find(session, withFlags(2)).size());
    EXPECT_CODE(kRevoked, verify(session, sign(open("carol"), kSendCertificate, bytesOf("text"))).code);
  }
}

TEST_F(Store, OpensslBundleIsImported) {
  const std::string folder = scratchPath("from openssl");
  CreateDirectoryA(folder.c_str(), nullptr);
  const EngineSession session = openIn("", folder);
  const std::string bundle = materialPath("messages/bundle.p7b");
  const SignParamRecord param{};
  EXPECT_CODE(0, QUIVO_ImportFile(session, &param, bundle.c_str()));
  EXPECT_EQ(2u, find(session, withFlags(2)).size());
}

TEST_F(Store, OneCertificateIsExported) {
  const EngineSession session = open("alice");
  const Bytes encoded = material("bob.cer");
  const DataBlob_t blob = blobOf(encoded);
  CertificateRecord bob{};
  ASSERT_CODE(0, QUIVO_ParseCert(session, &blob, 0x20000, &bob));
  CertIdRecord id{};
  id.type = 2;
  id.certHash = bob.certHash;
  EXPECT_EQ(encoded, exported(session, 2, &id));
  const Bytes pem = exported(session, 0, &id);
  EXPECT_EQ("-----BEGIN CERTIFICATE-----", std::string(pem.begin(), pem.begin() + 27));
  const std::string path = scratchPath("exported.cer");
  const SignParamRecord param{2, &id};
  EXPECT_CODE(0, QUIVO_ExportFile(session, &param, path.c_str()));
  EXPECT_EQ(encoded, readFile(path));
  EXPECT_CODE(kNothingToExport, QUIVO_ExportFile(open("alice", "roots"), &param, path.c_str()));
  QUIVO_FreeCert(session, &bob);
}

TEST_F(Store, TokensAreNotSupported) {
  exported(open("alice"), 32, nullptr, kNotSupported);
  exported(open("alice"), 8, nullptr, kNotSupported);
  exported(openMinimal(), 2, nullptr, kNothingToExport);
}

TEST_F(Store, StrangersCertificateIsNotImportedAsOwn) {
  const EngineSession session = openIn("alice", copyOfStore("roots", "own"));
  EXPECT_CODE(kKeyDoesNotMatch, import(session, 8, material("bob.cer")));
  EXPECT_CODE(0, import(session, 8, material("alice.cer")));
}

TEST_F(Requests, RequestIsMadeKeptAndExported) {
  const std::string folder = copyOfStore("roots", "requests");
  const EngineSession session = openIn("alice", folder);
  char subject[] = "CN=\xCD\xEE\xE2\xFB\xE9 <&> \"q\", O=\"A, B\", C=RU";
  char address[] = "new@example.test";
  char usage[] = "1.3.6.1.5.5.7.3.4";
  char* usages[] = {usage};
  CertificateRecord wanted{};
  wanted.subject = subject;
  wanted.keyUsage = 5;
  wanted.extKeyUsage = usages;
  wanted.extKeyUsageCount = 1;
  wanted.subjectAltName.emailAddress = address;
  DataBlob_t out{};
  ASSERT_CODE(0, QUIVO_CreateXmlRequest(session, 0, &wanted, &out));
  const Bytes bytes = take(session, out);
  const std::string xml(bytes.begin(), bytes.end());
  EXPECT_EQ(0u, xml.find("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
  EXPECT_NE(std::string::npos, xml.find("\\&lt;&amp;\\&gt;")) << xml;
  EXPECT_NE(std::string::npos, xml.find("<Pkcs10>MII")) << xml;
  EXPECT_NE(std::string::npos, xml.find("<KeyUsage>5</KeyUsage>")) << xml;
  const Bytes pem = exported(session, 4, nullptr);
  EXPECT_EQ("-----BEGIN CERTIFICATE REQUEST-----", std::string(pem.begin(), pem.begin() + 35));
}

TEST_F(Requests, OwnKeyIsUsedWhenNoneIsToBeMade) {
  const EngineSession session = open("bob", "roots");
  const CertificateRecord wanted{};
  const std::string folder = copyOfStore("roots", "own key");
  DataBlob_t out{};
  ASSERT_CODE(0, QUIVO_CreateXmlRequest(openIn("bob", folder), 4, &wanted, &out));
  EXPECT_CODE(kWinInvalidParameter, QUIVO_CreateXmlRequest(openIn("bob", folder), 0, &wanted, &out));
  EXPECT_CODE(kNotSupported, QUIVO_CreateXmlRequest(session, 2, &wanted, &out));
}

TEST_F(Requests, WithoutAStoreAKeyWouldBeLost) {
  char subject[] = "CN=x";
  CertificateRecord wanted{};
  wanted.subject = subject;
  DataBlob_t out{};
  EXPECT_CODE(kNoStore, QUIVO_CreateXmlRequest(openMinimal(), 0, &wanted, &out));
  char broken[] = "no name at all";
  wanted.subject = broken;
  EXPECT_CODE(kWinInvalidParameter, QUIVO_CreateXmlRequest(openMinimal(), 0, &wanted, &out));
  exported(openIn("alice", copyOfStore("roots", "no requests")), 4, nullptr, kNothingToExport);
}
