// The legacy object's recipients, found by address or selected by the user.
#include "contract/legacy/recipients.h"

namespace {

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

TEST_F(LegacyRecipients, WithoutMemoryForTheTextNothingHappens) {
  Module::get().failAllocation(0);
  EXPECT_HR(E_OUTOFMEMORY, object->SetRecipients(Bstr(L"SMTP:a")));
  Module::get().failAllocation(-1);
  EXPECT_EQ(0u, engine().calls().size());
}

}  // namespace
