#include "support/certificates.h"

#include <iterator>

namespace {

fake::AltName AltNameWith(const std::string& prefix) {
  fake::AltName name;
  for (size_t i = 0; i < name.size(); ++i) name[i] = prefix + std::to_string(i);
  return name;
}

std::wstring ExtraNameOf(IAltName* name) {
  Bstr value;
  void* slot = (*reinterpret_cast<void***>(name))[35];
  EXPECT_OK(reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(IAltName*, BSTR*)>(slot)(name, value.inOut()));
  return value.text();
}

void ExpectAltName(IAltName* name, const std::string& prefix) {
  ASSERT_NE(nullptr, name);
  using Get = HRESULT (STDMETHODCALLTYPE IAltName::*)(BSTR*);
  const Get gets[]{&IAltName::get_emailAddress,
                   &IAltName::get_DNS,
                   &IAltName::get_URI,
                   &IAltName::get_IP,
                   &IAltName::get_organizationName,
                   &IAltName::get_registredAddress,
                   &IAltName::get_surname,
                   &IAltName::get_businessCategory,
                   &IAltName::get_telephoneNumber,
                   &IAltName::get_description,
                   &IAltName::get_account_number,
                   &IAltName::get_bank_id,
                   &IAltName::get_physicalDelivery,
                   &IAltName::get_exchange_address};
  for (size_t i = 0; i < std::size(gets); ++i) EXPECT_EQ(Widen(prefix + std::to_string(i)), TextOf(name, gets[i])) << i;
  EXPECT_EQ(Widen(prefix + "14"), ExtraNameOf(name));
}

void ExpectPolicies(ICertificate* certificate) {
  Variant value;
  EXPECT_OK(certificate->get_policies(value.out()));
  const auto policies = ObjectsOf<IPolicy>(value);
  ASSERT_EQ(2u, policies.size());
  long number = 0;
  EXPECT_EQ(L"1.2.1", TextOf(policies[0].get(), &IPolicy::get_oid));
  EXPECT_EQ(L"organization", TextOf(policies[0].get(), &IPolicy::get_org_name));
  EXPECT_EQ(L"notice", TextOf(policies[0].get(), &IPolicy::get_text));
  EXPECT_OK(policies[0]->get_not_num(&number));
  EXPECT_EQ(7, number);
  EXPECT_EQ(L"1.2.2", TextOf(policies[1].get(), &IPolicy::get_oid));
  EXPECT_EQ(L"", TextOf(policies[1].get(), &IPolicy::get_org_name));
}

void ExpectExtensions(ICertificate* certificate) {
  Variant value, data, noData;
  EXPECT_OK(certificate->get_extensions(value.out()));
  const auto extensions = ObjectsOf<IExtension>(value);
  ASSERT_EQ(2u, extensions.size());
  long type = 0, critical = 0;
  EXPECT_EQ(L"2.5.29.1", TextOf(extensions[0].get(), &IExtension::get_oid));
  EXPECT_OK(extensions[0]->get_type(&type));
  EXPECT_OK(extensions[0]->get_critical(&critical));
  EXPECT_EQ(3, type);
  EXPECT_EQ(1, critical);
  EXPECT_OK(extensions[0]->get_data(data.out()));
  EXPECT_EQ((Bytes{4, 5, 6}), PlainBytesOf(data));
  EXPECT_OK(extensions[1]->get_data(noData.out()));
  EXPECT_EQ(VT_EMPTY, noData.type());
}

void ExpectTimes(ICertificate* certificate) {
  DATE date = 0;
  EXPECT_OK(certificate->get_notBefore(&date));
  EXPECT_DOUBLE_EQ(25570.0, date);
  EXPECT_OK(certificate->get_notAfter(&date));
  EXPECT_DOUBLE_EQ(25571.0, date);
  EXPECT_OK(certificate->get_notBeforePrivate(&date));
  EXPECT_DOUBLE_EQ(25572.0, date);
  EXPECT_OK(certificate->get_notAfterPrivate(&date));
  EXPECT_DOUBLE_EQ(25573.0, date);
}

}  // namespace

fake::Certificate FullCertificate() {
  fake::Certificate full;
  full.fields = 0x4007FFFF;
  full.issuer = "CN=\xD3\xD6";
  full.serialNumber = "0A0B";
  full.subject = "CN=\xC8\xE2\xE0\xED\xEE\xE2";
  full.algorithm = "GOST";
  full.issuerUID = "issuer-uid";
  full.subjectUID = "subject-uid";
  full.keyId = "key-id";
  full.notBefore = 86400;
  full.notAfter = 2 * 86400;
  full.notBeforePrivate = 3 * 86400;
  full.notAfterPrivate = 4 * 86400;
  full.keyUsage = 0x1FF;
  full.issuerAltName = AltNameWith("issuer-");
  full.subjectAltName = AltNameWith("subject-");
  full.policies = {{"1.2.1", "organization", 7, "notice"}, {"1.2.2", {}, 0, {}}};
  full.extKeyUsage = {"1.3.6.1", fake::Text{}, "1.3.6.2"};
  full.extensions = {{"2.5.29.1", 3, 1, {4, 5, 6}}, {"2.5.29.2", 0, 0, {}}};
  full.certEncoded = {0x30, 0x82, 0x00};
  full.certHash = {0xAA, 0xBB};
  return full;
}

fake::Certificate CertificateOf(const std::string& subject) {
  fake::Certificate certificate;
  certificate.subject = subject;
  return certificate;
}

std::wstring SubjectOf(ICertificate* certificate) { return TextOf(certificate, &ICertificate::get_subject); }

void ExpectFullCertificate(ICertificate* certificate, int fields) {
  ASSERT_NE(nullptr, certificate);
  Certinfo_t shown{};
  Keyusage_t usage{};
  Variant usages, encoded, hash;
  EXPECT_OK(certificate->get_fields(&shown));
  EXPECT_EQ(fields, static_cast<int>(shown));
  EXPECT_EQ(L"CN=УЦ", TextOf(certificate, &ICertificate::get_issuer));
  EXPECT_EQ(L"0A0B", TextOf(certificate, &ICertificate::get_serialNumber));
  EXPECT_EQ(L"CN=Иванов", TextOf(certificate, &ICertificate::get_subject));
  EXPECT_EQ(L"GOST", TextOf(certificate, &ICertificate::get_algorithm));
  EXPECT_EQ(L"issuer-uid", TextOf(certificate, &ICertificate::get_issuerUID));
  EXPECT_EQ(L"subject-uid", TextOf(certificate, &ICertificate::get_subjectUID));
  EXPECT_EQ(L"key-id", TextOf(certificate, &ICertificate::get_keyId));
  EXPECT_OK(certificate->get_keyUsage(&usage));
  EXPECT_EQ(0x1FF, static_cast<int>(usage));
  ExpectTimes(certificate);
  Ptr<IAltName> issuerName, subjectName;
  EXPECT_OK(certificate->get_issuerAltName(issuerName.out()));
  ExpectAltName(issuerName, "issuer-");
  EXPECT_OK(certificate->get_subjectAltName(subjectName.out()));
  ExpectAltName(subjectName, "subject-");
  ExpectPolicies(certificate);
  EXPECT_OK(certificate->get_extKeyUsage(usages.out()));
  EXPECT_EQ((std::vector<std::wstring>{L"1.3.6.1", L"", L"1.3.6.2"}), StringsOf(usages));
  ExpectExtensions(certificate);
  EXPECT_OK(certificate->get_certEncoded(encoded.out()));
  EXPECT_EQ((Bytes{0x30, 0x82, 0x00}), PlainBytesOf(encoded));
  EXPECT_OK(certificate->get_certHash(hash.out()));
  EXPECT_EQ((Bytes{0xAA, 0xBB}), PlainBytesOf(hash));
}
