// The legacy object's list of recipients: given in DER, kept in order, and given back.
#include "contract/legacy/recipients.h"

namespace {

TEST_F(LegacyRecipients, ACertificateIsAddedByItsBytes) {
  const Bytes der = {0x30, 0x03, 0x00, 0x01, 0x02};
  EXPECT_OK(object->AddRecipDERCert(DerOf(der)));
  const fake::Call& verification = engine().only("QUIVO_VerifyCert");
  const fake::Snapshot param = verification.record(1);
  EXPECT_EQ(5u, param.u32(0));
  EXPECT_EQ(0u, param.u64(8));
  EXPECT_EQ(0x6064u, param.u32(16));
  EXPECT_EQ(der, verification.blobBytes(2));
  EXPECT_EQ(5u, verification.blobLength(2));
  EXPECT_TRUE(verification.record(3).allZero());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeCert"));
  EXPECT_EQ(5, engine().only("QUIVO_AllocMem").number(1));
  const auto all = recipients();
  ASSERT_EQ(1u, all.size());
  EXPECT_EQ(0x10000u, all[0].u32(0));
  EXPECT_EQ(der, all[0].blob(376));
  fake::Snapshot rest = all[0];
  std::fill(rest.bytes.begin(), rest.bytes.begin() + 4, uint8_t{0});
  std::fill(rest.bytes.begin() + 376, rest.bytes.begin() + 392, uint8_t{0});
  EXPECT_TRUE(rest.allZero());
}

TEST_F(LegacyRecipients, TheSameCertificateIsAddedTwice) {
  EXPECT_OK(object->AddRecipDERCert(DerOf({1, 2, 3})));
  EXPECT_OK(object->AddRecipDERCert(DerOf({1, 2, 3})));
  EXPECT_EQ(2u, recipients().size());
}

TEST_F(LegacyRecipients, ACertificateIsAddedBehindThoseFound) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a@b")));
  EXPECT_OK(object->AddRecipDERCert(DerOf({9})));
  const auto all = recipients();
  ASSERT_EQ(2u, all.size());
  EXPECT_EQ("CN=A", all[0].text(24));
  EXPECT_EQ(Bytes{9}, all[1].blob(376));
}

TEST_F(LegacyRecipients, ANullCertificateIsABadParameter) {
  EXPECT_HR(kBadParameter, object->AddRecipDERCert(nullptr));
  EXPECT_EQ(0u, engine().calls().size());
}

TEST_F(LegacyRecipients, ACertificateThatDoesNotVerifyIsRefused) {
  for (int32_t code : {0x1234, -9}) {
    engine().forgetCalls();
    engine().on("QUIVO_VerifyCert").result = code;
    EXPECT_HR(code, object->AddRecipDERCert(DerOf({1})));
    EXPECT_EQ((std::vector<std::string>{"QUIVO_VerifyCert", "QUIVO_FreeCert"}), engine().names());
  }
  EXPECT_EQ(0u, recipients().size());
  EXPECT_EQ(0u, desktop.messages.size());
}

TEST_F(LegacyRecipients, ValidityBeginsWithItsFirstSecondAndEndsBeforeItsLast) {
  fake::Certificate& certificate = *engine().on("QUIVO_VerifyCert").certificate;
  certificate.notBefore = now();
  certificate.notAfter = now() + 1;
  EXPECT_OK(object->AddRecipDERCert(DerOf({1})));
  certificate.notBefore = now() + 1;
  certificate.notAfter = now() + 2;
  EXPECT_HR(kNotValidNow, object->AddRecipDERCert(DerOf({1})));
  certificate.notBefore = now() - 1;
  certificate.notAfter = now();
  EXPECT_HR(kNotValidNow, object->AddRecipDERCert(DerOf({1})));
  EXPECT_EQ(1u, recipients().size());
  EXPECT_EQ(0u, desktop.messages.size());
}

TEST_F(LegacyRecipients, ValidityIsOfUnsigned32BitTimes) {
  fake::Certificate& certificate = *engine().on("QUIVO_VerifyCert").certificate;
  desktop.now = 0x100000000 + 1000;
  certificate.notBefore = 990;
  certificate.notAfter = 1010;
  EXPECT_OK(object->AddRecipDERCert(DerOf({1})));
  desktop.now = 0x7FFFFFFF;
  certificate.notAfter = 0xFFFFFFFF;
  EXPECT_OK(object->AddRecipDERCert(DerOf({1})));
  certificate.notBefore = 0x80000000;
  EXPECT_HR(kNotValidNow, object->AddRecipDERCert(DerOf({1})));
}

TEST_F(LegacyRecipients, VerifiedRecordIsGivenBackBeforeMemoryIsTaken) {
  EXPECT_OK(object->AddRecipDERCert(DerOf({1})));
  EXPECT_EQ((std::vector<std::string>{"QUIVO_VerifyCert", "QUIVO_FreeCert", "QUIVO_AllocMem"}), engine().names());
}

TEST_F(LegacyRecipients, WithoutEngineMemoryNothingIsAdded) {
  engine().once("QUIVO_AllocMem").result = 1;
  EXPECT_HR(kNoMemory, object->AddRecipDERCert(DerOf({1})));
  EXPECT_EQ(0u, recipients().size());
  EXPECT_OK(object->AddRecipDERCert(DerOf({2})));
  ASSERT_EQ(1u, recipients().size());
  EXPECT_EQ(Bytes{2}, recipients()[0].blob(376));
}

void* NoMemory(void*, size_t) { return nullptr; }

TEST_F(LegacyRecipients, AListThatCannotGrowKeepsWhatItHas) {
  EXPECT_OK(object->AddRecipDERCert(DerOf({1})));
  {
    ImportPatch full(Module::get().handle(), "realloc", reinterpret_cast<void*>(NoMemory));
    EXPECT_HR(kNoMemory, object->AddRecipDERCert(DerOf({2})));
    EXPECT_EQ(1u, engine().count("QUIVO_AllocMem"));
  }
  ASSERT_EQ(1u, recipients().size());
  EXPECT_EQ(Bytes{1}, recipients()[0].blob(376));
}

TEST_F(LegacyRecipients, WhatDoesNotFitIntoTheListIsGivenBack) {
  ImportPatch full(Module::get().handle(), "realloc", reinterpret_cast<void*>(NoMemory));
  EXPECT_HR(kNoMemory, object->SetRecipients(Bstr(L"")));
  EXPECT_HR(kNoMemory, object->SetRecipients(Bstr(L"SMTP:a;SMTP:b")));
  EXPECT_EQ(2u, searches().size());
  EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
  EXPECT_EQ(0u, recipients().size());
}

TEST_F(LegacyRecipients, FreeRecipCertsGivesEveryRecordBack) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a;SMTP:b")));
  EXPECT_OK(object->AddRecipDERCert(DerOf({1})));
  engine().forgetCalls();
  EXPECT_OK(object->FreeRecipCerts());
  EXPECT_EQ(3u, engine().count("QUIVO_FreeCert"));
  EXPECT_OK(object->FreeRecipCerts());
  EXPECT_EQ(3u, engine().count("QUIVO_FreeCert"));
  EXPECT_EQ(0u, recipients().size());
}

TEST_F(LegacyRecipients, RecordsAreGivenBackInTheirOrder) {
  engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=A"), CertificateOf("CN=B"), CertificateOf("CN=C")};
  EXPECT_OK(object->SetRecipients(Bstr(L"")));
  engine().forgetCalls();
  EXPECT_OK(object->FreeRecipCerts());
  ASSERT_EQ(3u, engine().calls().size());
  EXPECT_EQ("CN=A", engine().calls()[0].record(1).text(24));
  EXPECT_EQ("CN=B", engine().calls()[1].record(1).text(24));
  EXPECT_EQ("CN=C", engine().calls()[2].record(1).text(24));
}

TEST_F(LegacyRecipients, UninitWithoutASessionGivesThemBackToo) {
  object->Uninit();
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a")));
  engine().forgetCalls();
  EXPECT_HR(S_FALSE, object->Uninit());
  EXPECT_EQ(std::vector<std::string>{"QUIVO_FreeCert"}, engine().names());
}

TEST_F(LegacyRecipients, UninitGivesThemBackBeforeItClosesTheSession) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a")));
  engine().forgetCalls();
  EXPECT_OK(object->Uninit());
  EXPECT_EQ((std::vector<std::string>{"QUIVO_FreeCert", "QUIVO_Uninitialize"}), engine().names());
}

TEST_F(LegacyRecipients, ReleaseGivesThemBack) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a")));
  object.reset();
  EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
  engine().reset();
}

}  // namespace
