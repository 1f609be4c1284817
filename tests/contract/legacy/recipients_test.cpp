// The legacy object's recipients: found by address, selected by the user, given in DER, and given back.
#include "contract/legacy/legacy_test.h"
#include "support/certificates.h"

namespace {

constexpr uint32_t kBadParameter = 0x80000057;
constexpr uint32_t kNoMemory = 0x80000008;
constexpr uint32_t kNotValidNow = 0xE0700036;
constexpr int32_t kCancelled = static_cast<int32_t>(0xE072008A);
constexpr size_t kTemplate = 16;
constexpr size_t kSubjectAltName = kTemplate + 200;

/// A BSTR that carries bytes, of any number.
Bstr derOf(const Bytes& bytes) {
  Bstr carrier;
  *carrier.inOut() =
      SysAllocStringByteLen(reinterpret_cast<const char*>(bytes.data()), static_cast<UINT>(bytes.size()));
  return carrier;
}

class LegacyRecipients : public LegacyTest {
 protected:
  void SetUp() override {
    LegacyTest::SetUp();
    openSession();
    engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=A")};
    fake::Certificate valid;
    valid.subject = "CN=B";
    valid.notBefore = now() - 10;
    valid.notAfter = now() + 10;
    engine().on("QUIVO_VerifyCert").certificate = valid;
  }
  uint32_t now() { return static_cast<uint32_t>(desktop.now); }

  std::vector<fake::Snapshot> searches() {
    std::vector<fake::Snapshot> all;
    for (const fake::Call& call : engine().calls())
      if (call.function == "QUIVO_FindCert") all.push_back(call.record(1));
    return all;
  }
  /// The recipients that an encryption would have.
  std::vector<fake::Snapshot> recipients() {
    engine().forgetCalls();
    EXPECT_OK(object->Encrypt(Bstr(L"in"), Bstr(L"out")));
    const fake::Snapshot param = engine().only("QUIVO_EncryptFile").record(1);
    std::vector<fake::Snapshot> all;
    for (int32_t i = 0; i < param.i32(16); ++i) all.push_back(param.at(24).element(static_cast<size_t>(i), 408));
    return all;
  }
  void expectSelection(const fake::Snapshot& search) {
    EXPECT_EQ(8u, search.u32(0));
    EXPECT_EQ(0u, search.u64(8));
    EXPECT_EQ(0x80u, search.u32(kTemplate));
    EXPECT_EQ(5u, search.u32(kTemplate + 64));
    EXPECT_EQ(0x20000u, search.u32(424));
  }
  /// A search by address, with the address at one member of the alternative name and no other.
  void expectAddress(const fake::Snapshot& search, size_t member, const std::string& address) {
    EXPECT_EQ(0u, search.u32(0));
    EXPECT_EQ(0x280u, search.u32(kTemplate));
    EXPECT_EQ(5u, search.u32(kTemplate + 64));
    EXPECT_EQ(0x20000u, search.u32(424));
    for (size_t i = 0; i < 15; ++i) {
      const size_t offset = kSubjectAltName + 8 * i;
      if (i == member)
        EXPECT_EQ(address, search.text(offset));
      else
        EXPECT_EQ(0u, search.pointer(offset)) << "member " << i;
    }
  }
};

constexpr size_t kEmail = 0, kExchange = 13, kNotes = 14;

TEST_F(LegacyRecipients, EachKindSelectsItsMember) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:anna@example.test")));
  expectAddress(searches().at(0), kEmail, "anna@example.test");
  EXPECT_OK(object->SetRecipients(Bstr(L"EX:/o=Пример/cn=anna")));
  expectAddress(searches().at(1), kExchange, AnsiOf(L"/o=Пример/cn=anna"));
  EXPECT_OK(object->SetRecipients(Bstr(L"NOTES:Anna/Example")));
  expectAddress(searches().at(2), kNotes, "Anna/Example");
}

TEST_F(LegacyRecipients, TheKindIsReadInAnyCase) {
  EXPECT_OK(object->SetRecipients(Bstr(L"smtp:a@b")));
  expectAddress(searches().at(0), kEmail, "a@b");
  EXPECT_OK(object->SetRecipients(Bstr(L"Ex:a")));
  expectAddress(searches().at(1), kExchange, "a");
  EXPECT_OK(object->SetRecipients(Bstr(L"nOtEs:a")));
  expectAddress(searches().at(2), kNotes, "a");
}

TEST_F(LegacyRecipients, EntriesAreSearchedFromTheLastToTheFirst) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:one@b;NOTES:two;EX:three")));
  ASSERT_EQ(3u, searches().size());
  expectAddress(searches()[0], kExchange, "three");
  expectAddress(searches()[1], kNotes, "two");
  expectAddress(searches()[2], kEmail, "one@b");
  EXPECT_EQ(3u, recipients().size());
}

TEST_F(LegacyRecipients, OnlyTheFirstColonSeparates) {
  EXPECT_OK(object->SetRecipients(Bstr(L"EX:a:b:c")));
  expectAddress(searches().at(0), kExchange, "a:b:c");
}

TEST_F(LegacyRecipients, AnUnknownKindLetsTheUserSelectAtOnce) {
  EXPECT_OK(object->SetRecipients(Bstr(L"X400:anna")));
  ASSERT_EQ(1u, searches().size());
  expectSelection(searches()[0]);
  for (size_t i = 0; i < 15; ++i) EXPECT_EQ(0u, searches()[0].pointer(kSubjectAltName + 8 * i));
}

TEST_F(LegacyRecipients, AnEmptyKindIsUnknown) {
  EXPECT_OK(object->SetRecipients(Bstr(L":anna")));
  expectSelection(searches().at(0));
}

TEST_F(LegacyRecipients, AnEmptyListLetsTheUserSelectOnce) {
  engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=A"), CertificateOf("CN=B")};
  EXPECT_OK(object->SetRecipients(Bstr(L"")));
  ASSERT_EQ(1u, searches().size());
  expectSelection(searches()[0]);
  const auto found = recipients();
  ASSERT_EQ(2u, found.size());
  EXPECT_EQ("CN=A", found[0].text(24));
  EXPECT_EQ("CN=B", found[1].text(24));
}

TEST_F(LegacyRecipients, ANullListIsAnEmptyOne) {
  EXPECT_OK(object->SetRecipients(nullptr));
  expectSelection(searches().at(0));
}

TEST_F(LegacyRecipients, AnEmptyListSearchesOnlyOnce) {
  engine().on("QUIVO_FindCert").certificates = {};
  for (int32_t code : {-7, kCancelled}) {
    engine().forgetCalls();
    engine().on("QUIVO_FindCert").result = code;
    EXPECT_HR(code, object->SetRecipients(Bstr(L"")));
    EXPECT_EQ(1u, searches().size());
  }
}

TEST_F(LegacyRecipients, AnEmptyListWithAPositiveCodeIsASuccess) {
  engine().on("QUIVO_FindCert").result = 3;
  EXPECT_OK(object->SetRecipients(Bstr(L"")));
  EXPECT_EQ(1u, recipients().size());
}

TEST_F(LegacyRecipients, ASearchWithoutAnArrayIsABadParameter) {
  engine().on("QUIVO_FindCert").certificates = {};
  EXPECT_HR(kBadParameter, object->SetRecipients(Bstr(L"")));
  EXPECT_HR(kBadParameter, object->SetRecipients(Bstr(L"SMTP:a@b")));
  EXPECT_EQ(0u, engine().count("QUIVO_FreeMem"));
}

TEST_F(LegacyRecipients, WhatASearchFoundStaysWithTheList) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a@b")));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeMem"));
  EXPECT_EQ(0u, engine().count("QUIVO_FreeFindResult"));
  EXPECT_EQ(0u, engine().count("QUIVO_FreeCert"));
  EXPECT_EQ("CN=A", recipients().at(0).text(24));
}

TEST_F(LegacyRecipients, AFailedSearchLetsTheUserSelectAndKeepsTheAddress) {
  engine().once("QUIVO_FindCert").result = -3;
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a@b")));
  ASSERT_EQ(2u, searches().size());
  expectAddress(searches()[0], kEmail, "a@b");
  expectSelection(searches()[1]);
  EXPECT_EQ("a@b", searches()[1].text(kSubjectAltName));
  EXPECT_TRUE(engine().calls().at(1).record(2).allZero());
}

TEST_F(LegacyRecipients, AFailedSelectionOfAnUnknownKindIsRepeated) {
  engine().once("QUIVO_FindCert").result = -3;
  EXPECT_OK(object->SetRecipients(Bstr(L"X400:a")));
  ASSERT_EQ(2u, searches().size());
  expectSelection(searches()[1]);
}

TEST_F(LegacyRecipients, TheSecondFailureIsReturned) {
  engine().once("QUIVO_FindCert").result = -3;
  engine().once("QUIVO_FindCert").result = -4;
  EXPECT_HR(-4, object->SetRecipients(Bstr(L"SMTP:a@b")));
  EXPECT_EQ(2u, searches().size());
}

TEST_F(LegacyRecipients, ACancelledSelectionIsReturnedWithoutASecondSearch) {
  engine().on("QUIVO_FindCert").certificates = {};
  engine().on("QUIVO_FindCert").result = kCancelled;
  EXPECT_HR(kCancelled, object->SetRecipients(Bstr(L"SMTP:a@b")));
  EXPECT_EQ(1u, searches().size());
}

TEST_F(LegacyRecipients, AFailureEndsTheListAndKeepsWhatWasFound) {
  engine().once("QUIVO_FindCert").certificates = {CertificateOf("CN=Last")};
  engine().once("QUIVO_FindCert").result = kCancelled;
  EXPECT_HR(kCancelled, object->SetRecipients(Bstr(L"SMTP:first;SMTP:second;SMTP:last")));
  EXPECT_EQ(2u, searches().size());
  ASSERT_EQ(1u, recipients().size());
}

TEST_F(LegacyRecipients, APositiveCodeGoesOnAndTheLastOneIsReturned) {
  for (int32_t code : {9, 4}) {
    fake::Reply& reply = engine().once("QUIVO_FindCert");
    reply.result = code;
    reply.certificates = {CertificateOf("CN=B")};
  }
  EXPECT_HR(4, object->SetRecipients(Bstr(L"SMTP:a;SMTP:b")));
  EXPECT_EQ(2u, recipients().size());
}

TEST_F(LegacyRecipients, AnEntryWithoutAColonIsABadParameter) {
  EXPECT_HR(kBadParameter, object->SetRecipients(Bstr(L"anna@example.test")));
  EXPECT_EQ(0u, searches().size());
  EXPECT_HR(kBadParameter, object->SetRecipients(Bstr(L"SMTP:a@b;")));
  EXPECT_EQ(0u, searches().size());
  EXPECT_HR(kBadParameter, object->SetRecipients(Bstr(L"SMTP:a@b;x;EX:c")));
  EXPECT_EQ(1u, searches().size());
}

TEST_F(LegacyRecipients, AnEmptyFirstEntryIsNone) {
  EXPECT_OK(object->SetRecipients(Bstr(L";SMTP:a@b")));
  EXPECT_EQ(1u, searches().size());
}

TEST_F(LegacyRecipients, AnEmptyAddressIsSearched) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:")));
  expectAddress(searches().at(0), kEmail, "");
}

TEST_F(LegacyRecipients, TheListIsReplacedAndNeverExtended) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a;SMTP:b")));
  engine().forgetCalls();
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:c")));
  EXPECT_EQ("QUIVO_FreeCert", engine().names().at(0));
  EXPECT_EQ("QUIVO_FreeCert", engine().names().at(1));
  EXPECT_EQ("QUIVO_FindCert", engine().names().at(2));
  EXPECT_EQ(1u, recipients().size());
}

TEST_F(LegacyRecipients, ManyRecipientsAreKept) {
  engine().on("QUIVO_FindCert").certificates.assign(300, CertificateOf("CN=Many"));
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a;SMTP:b")));
  const auto all = recipients();
  ASSERT_EQ(600u, all.size());
  EXPECT_EQ("CN=Many", all[599].text(24));
}

TEST_F(LegacyRecipients, ACountBelowOneAddsNothing) {
  engine().on("QUIVO_FindCert").findCount = 0;
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a@b")));
  EXPECT_EQ(0u, recipients().size());
  engine().releaseOutstanding();
}

TEST_F(LegacyRecipients, ACertificateIsAddedByItsBytes) {
  const Bytes der = {0x30, 0x03, 0x00, 0x01, 0x02};
  EXPECT_OK(object->AddRecipDERCert(derOf(der)));
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
  EXPECT_OK(object->AddRecipDERCert(derOf({1, 2, 3})));
  EXPECT_OK(object->AddRecipDERCert(derOf({1, 2, 3})));
  EXPECT_EQ(2u, recipients().size());
}

TEST_F(LegacyRecipients, ACertificateIsAddedBehindThoseFound) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a@b")));
  EXPECT_OK(object->AddRecipDERCert(derOf({9})));
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
    EXPECT_HR(code, object->AddRecipDERCert(derOf({1})));
    EXPECT_EQ((std::vector<std::string>{"QUIVO_VerifyCert", "QUIVO_FreeCert"}), engine().names());
  }
  EXPECT_EQ(0u, recipients().size());
  EXPECT_EQ(0u, desktop.messages.size());
}

TEST_F(LegacyRecipients, ValidityBeginsWithItsFirstSecondAndEndsBeforeItsLast) {
  fake::Certificate& certificate = *engine().on("QUIVO_VerifyCert").certificate;
  certificate.notBefore = now();
  certificate.notAfter = now() + 1;
  EXPECT_OK(object->AddRecipDERCert(derOf({1})));
  certificate.notBefore = now() + 1;
  certificate.notAfter = now() + 2;
  EXPECT_HR(kNotValidNow, object->AddRecipDERCert(derOf({1})));
  certificate.notBefore = now() - 1;
  certificate.notAfter = now();
  EXPECT_HR(kNotValidNow, object->AddRecipDERCert(derOf({1})));
  EXPECT_EQ(1u, recipients().size());
  EXPECT_EQ(0u, desktop.messages.size());
}

TEST_F(LegacyRecipients, ValidityIsOfUnsigned32BitTimes) {
  fake::Certificate& certificate = *engine().on("QUIVO_VerifyCert").certificate;
  desktop.now = 0x100000000 + 1000;
  certificate.notBefore = 990;
  certificate.notAfter = 1010;
  EXPECT_OK(object->AddRecipDERCert(derOf({1})));
  desktop.now = 0x7FFFFFFF;
  certificate.notAfter = 0xFFFFFFFF;
  EXPECT_OK(object->AddRecipDERCert(derOf({1})));
  certificate.notBefore = 0x80000000;
  EXPECT_HR(kNotValidNow, object->AddRecipDERCert(derOf({1})));
}

TEST_F(LegacyRecipients, VerifiedRecordIsGivenBackBeforeMemoryIsTaken) {
  EXPECT_OK(object->AddRecipDERCert(derOf({1})));
  EXPECT_EQ((std::vector<std::string>{"QUIVO_VerifyCert", "QUIVO_FreeCert", "QUIVO_AllocMem"}), engine().names());
}

TEST_F(LegacyRecipients, WithoutEngineMemoryNothingIsAdded) {
  engine().once("QUIVO_AllocMem").result = 1;
  EXPECT_HR(kNoMemory, object->AddRecipDERCert(derOf({1})));
  EXPECT_EQ(0u, recipients().size());
  EXPECT_OK(object->AddRecipDERCert(derOf({2})));
  ASSERT_EQ(1u, recipients().size());
  EXPECT_EQ(Bytes{2}, recipients()[0].blob(376));
}

void* noMemory(void*, size_t) { return nullptr; }

TEST_F(LegacyRecipients, AListThatCannotGrowKeepsWhatItHas) {
  EXPECT_OK(object->AddRecipDERCert(derOf({1})));
  {
    ImportPatch full(Module::get().handle(), "realloc", reinterpret_cast<void*>(noMemory));
    EXPECT_HR(kNoMemory, object->AddRecipDERCert(derOf({2})));
    EXPECT_EQ(1u, engine().count("QUIVO_AllocMem"));
  }
  ASSERT_EQ(1u, recipients().size());
  EXPECT_EQ(Bytes{1}, recipients()[0].blob(376));
}

TEST_F(LegacyRecipients, WhatDoesNotFitIntoTheListIsGivenBack) {
  ImportPatch full(Module::get().handle(), "realloc", reinterpret_cast<void*>(noMemory));
  EXPECT_HR(kNoMemory, object->SetRecipients(Bstr(L"")));
  EXPECT_HR(kNoMemory, object->SetRecipients(Bstr(L"SMTP:a;SMTP:b")));
  EXPECT_EQ(2u, searches().size());
  EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
  EXPECT_EQ(0u, recipients().size());
}

TEST_F(LegacyRecipients, FreeRecipCertsGivesEveryRecordBack) {
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:a;SMTP:b")));
  EXPECT_OK(object->AddRecipDERCert(derOf({1})));
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

TEST_F(LegacyRecipients, WithoutMemoryForTheTextNothingHappens) {
  Module::get().failAllocation(0);
  EXPECT_HR(E_OUTOFMEMORY, object->SetRecipients(Bstr(L"SMTP:a")));
  Module::get().failAllocation(-1);
  EXPECT_EQ(0u, engine().calls().size());
}

}  // namespace
