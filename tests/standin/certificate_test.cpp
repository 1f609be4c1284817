// Certificate records: every field of a certificate that has them all, under every mask.
#include <cstring>
#include <map>

#include "engine_test.h"

using namespace standin;

namespace {

/// The parsed certificate of a person for the time of a test.
class Parsed {
 public:
  Parsed(EngineSession session, const std::string& person, uint32_t info) : session_(session) {
    const Bytes encoded = Material(person + ".cer");
    const DataBlob_t blob = BlobOf(encoded);
    EXPECT_CODE(0, QUIVO_ParseCert(session, &blob, info, &record_));
  }
  ~Parsed() {
    EXPECT_CODE(0, QUIVO_FreeCert(session_, &record_));
    const CertificateRecord empty{};
    EXPECT_EQ(0, std::memcmp(&empty, &record_, sizeof empty));
  }
  const CertificateRecord* operator->() const { return &record_; }

 private:
  EngineSession session_;
  CertificateRecord record_{};
};

constexpr uint32_t kAll = 0x7FFFF;

class CertificateRecords : public EngineTest {
 protected:
  EngineSession session = openMinimal();
};

}  // namespace

TEST_F(CertificateRecords, NamesAndNumbers) {
  const Parsed bob(session, "bob", kAll);
  EXPECT_STREQ("emailAddress=bob@example.test, CN=Bob\\, Second, O=Example, C=RU", bob->subject);
  EXPECT_STREQ("0A00", bob->serialNumber);
  EXPECT_STREQ("sha256WithRSAEncryption", Parsed(session, "alice", kAll)->algorithm);
  EXPECT_STREQ("ecdsa-with-SHA256", bob->algorithm);
  EXPECT_EQ(40u, std::strlen(bob->keyId));
  EXPECT_EQ(20u, bob->certHash.len);
  EXPECT_EQ(Material("bob.cer"), Bytes(bob->certEncoded.data, bob->certEncoded.data + bob->certEncoded.len));
}

TEST_F(CertificateRecords, TextsAreInTheSystemsCodePage) {
  const Parsed alice(session, "alice", kAll);
  EXPECT_STREQ(
      "emailAddress=alice@example.test, CN=\xC0\xEB\xE8\xF1\xE0 \xC8\xE2\xE0\xED\xEE\xE2\xE0, "
      "O=\xCE\xCE\xCE \xAB\xCF\xF0\xE8\xEC\xE5\xF0\xBB, C=RU",
      alice->subject);
}

TEST_F(CertificateRecords, OtherFormsOfTexts) {
  const Parsed carol(session, "carol", kAll | 0x40000000 | 0x80000000);
  EXPECT_STREQ("commonName=Carol, countryName=RU", carol->subject);
  EXPECT_STREQ("1.2.840.113549.1.1.11", carol->algorithm);
}

TEST_F(CertificateRecords, Times) {
  const Parsed dave(session, "dave", kAll);
  EXPECT_EQ(1577836800u, dave->notBefore);
  EXPECT_EQ(1609459200u, dave->notAfter);
  EXPECT_EQ(0u, dave->notBeforePrivate);
  const Parsed erin(session, "erin", kAll);
  EXPECT_EQ(4070908800u, erin->notBefore);
  EXPECT_EQ(0xFFFFFFFFu, erin->notAfter);
  const Parsed alice(session, "alice", kAll);
  EXPECT_EQ(1704067200u, alice->notBeforePrivate);
  EXPECT_EQ(4102444800u, alice->notAfterPrivate);
}

TEST_F(CertificateRecords, KeyUsage) {
  EXPECT_EQ(1u | 4u, Parsed(session, "alice", kAll)->keyUsage);
  EXPECT_EQ(4u, Parsed(session, "frank", kAll)->keyUsage);
  EXPECT_EQ(32u | 64u, Parsed(session, "root", kAll)->keyUsage);
  const Parsed alice(session, "alice", kAll);
  ASSERT_EQ(2, alice->extKeyUsageCount);
  EXPECT_STREQ("1.3.6.1.5.5.7.3.4", alice->extKeyUsage[0]);
  EXPECT_STREQ("1.2.643.99.1", alice->extKeyUsage[1]);
}

TEST_F(CertificateRecords, AlternativeNames) {
  const Parsed alice(session, "alice", kAll);
  const AltNameRecord& name = alice->subjectAltName;
  EXPECT_STREQ("alice@example.test", name.emailAddress);
  EXPECT_STREQ("alice.example.test", name.DNS);
  EXPECT_STREQ("https://example.test/alice", name.URI);
  EXPECT_STREQ("192.0.2.7", name.IP);
  EXPECT_STREQ("Example", name.organizationName);
  EXPECT_STREQ("Main Street 1", name.registredAddress);
  EXPECT_STREQ("Ivanova", name.surname);
  EXPECT_STREQ("Tests", name.businessCategory);
  EXPECT_STREQ("123", name.telephoneNumber);
  EXPECT_STREQ("Some words", name.description);
  EXPECT_STREQ("40817", name.account_number);
  EXPECT_STREQ("044525", name.bank_id);
  EXPECT_STREQ("Office 5", name.physicalDelivery);
  EXPECT_STREQ("EX-alice", name.exchange_address);
  EXPECT_STREQ("CN=alice/O=notes", name.extraName);
  EXPECT_STREQ("authority@example.test", alice->issuerAltName.emailAddress);
  EXPECT_EQ(nullptr, Parsed(session, "bob", kAll)->subjectAltName.emailAddress);
}

TEST_F(CertificateRecords, Policies) {
  const Parsed alice(session, "alice", kAll);
  ASSERT_EQ(2, alice->policyCount);
  EXPECT_STREQ("1.2.643.99.2", alice->policies[0].oid);
  EXPECT_STREQ("Example", alice->policies[0].org_name);
  EXPECT_EQ(7, alice->policies[0].not_num);
  EXPECT_STREQ("\xD2\xE5\xEA\xF1\xF2 \xEF\xEE\xEB\xE8\xF2\xE8\xEA\xE8", alice->policies[0].text);
  EXPECT_STREQ("1.2.643.99.3", alice->policies[1].oid);
  EXPECT_EQ(nullptr, alice->policies[1].text);
}

TEST_F(CertificateRecords, Extensions) {
  const Parsed alice(session, "alice", kAll);
  std::map<std::string, const ExtensionRecord*> byOid;
  for (int32_t i = 0; i < alice->extensionCount; ++i) byOid[alice->extensions[i].oid] = &alice->extensions[i];
  ASSERT_EQ(1u, byOid.count("1.2.643.99.4"));
  ASSERT_EQ(1u, byOid.count("2.5.29.15"));
  EXPECT_EQ(1, byOid["2.5.29.15"]->critical);
  const ExtensionRecord& own = *byOid["1.2.643.99.4"];
  EXPECT_EQ(0, own.critical);
  EXPECT_EQ(0x0C, own.type);
  EXPECT_EQ((Bytes{0x0C, 3, 'a', 'b', 'c'}), Bytes(own.data.data, own.data.data + own.data.len));
}

TEST_F(CertificateRecords, EachFieldIsFilledOnlyWhenAskedFor) {
  for (int bit = 0; bit <= 18; ++bit) {
    const uint32_t field = 1u << bit;
    const Parsed alice(session, "alice", field);
    // This certificate has every field but the two unique identifiers.
    EXPECT_EQ(bit == 3 || bit == 4 ? 0 : field, alice->fields) << bit;
    EXPECT_EQ(field == 4, alice->subject != nullptr);
    EXPECT_EQ(field == 0x200, alice->subjectAltName.emailAddress != nullptr);
    EXPECT_EQ(field == 0x1000, alice->extensions != nullptr);
  }
  EXPECT_EQ(0u, Parsed(session, "alice", 0)->fields);
}

TEST_F(CertificateRecords, PemIsReadToo) {
  const Bytes pem = ReadBytes(MaterialPath("bob.pem"));
  const DataBlob_t blob = BlobOf(pem);
  CertificateRecord record{};
  EXPECT_CODE(0, QUIVO_ParseCert(session, &blob, 4, &record));
  EXPECT_NE(nullptr, record.subject);
  EXPECT_CODE(0, QUIVO_FreeCert(session, &record));
}

TEST_F(CertificateRecords, OtherBytesAreRefused) {
  CertificateRecord record{};
  for (const char* name : {"data.bin", "root.crl", "messages/attached.p7s", "alice.p12"}) {
    const Bytes bytes = Material(name);
    const DataBlob_t blob = BlobOf(bytes);
    EXPECT_CODE(kCertificateDamaged, QUIVO_ParseCert(session, &blob, 4, &record)) << name;
  }
  const DataBlob_t none{};
  EXPECT_CODE(kCertificateDamaged, QUIVO_ParseCert(session, &none, 4, &record));
}

TEST_F(CertificateRecords, CertificatesAreVerified) {
  const EngineSession session = open("alice");
  const auto verifyCertificate = [&](const std::string& person, uint32_t mode) {
    const Bytes encoded = Material(person + ".cer");
    const DataBlob_t blob = BlobOf(encoded);
    const VerifyCertParamRecord param{mode, nullptr, 0x64};
    CertificateRecord record{};
    const int32_t code = QUIVO_VerifyCert(session, &param, &blob, &record);
    EXPECT_EQ(code == 0, record.notAfter != 0);
    QUIVO_FreeCert(session, &record);
    return code;
  };
  EXPECT_CODE(0, verifyCertificate("alice", 1));
  EXPECT_CODE(0, verifyCertificate("bob", 5));
  EXPECT_CODE(kRevoked, verifyCertificate("carol", 5));
  EXPECT_CODE(kIssuerUnknown, verifyCertificate("mallory", 5));
  EXPECT_CODE(kExpired, verifyCertificate("dave", 1));
  EXPECT_CODE(0, verifyCertificate("dave", 5));
}
