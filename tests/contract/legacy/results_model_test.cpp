// What the results sheet decides to show, without a window: texts, rows, icons, hidden controls, names.
#include "legacy/results_model.h"

#include <array>
#include <deque>

#include "contract/legacy/desktop.h"
#include "support/contract_test.h"

using namespace legacy;

namespace {

using Numbers = std::vector<int>;

std::string NameOf(const char* subject) {
  char name[kNameSize];
  NameFromSubject(subject, name);
  return name;
}

TEST(LegacySubjectName, IsCommonNameThenOrganisation) {
  EXPECT_EQ("Anna, Example", NameOf("CN=Anna, O=Example, C=RU"));
  EXPECT_EQ("Anna, Example", NameOf("C=RU, O=Example, CN=Anna"));
}

TEST(LegacySubjectName, IsTheOneThatIsThere) {
  EXPECT_EQ("Anna", NameOf("CN=Anna,C=RU"));
  EXPECT_EQ("Example", NameOf("O=Example,C=RU"));
}

TEST(LegacySubjectName, IsTheWholeSubjectWithoutBoth) {
  EXPECT_EQ("OU=Sales,C=RU", NameOf("OU=Sales,C=RU"));
  EXPECT_EQ("Anna", NameOf("Anna"));
  EXPECT_EQ("CN=, O= , C=RU", NameOf("CN=, O= , C=RU"));
}

TEST(LegacySubjectName, OfNothingIsEmpty) {
  EXPECT_EQ("", NameOf(nullptr));
  EXPECT_EQ("", NameOf(""));
}

TEST(LegacySubjectName, KnowsAttributesByEachOfTheirNames) {
  EXPECT_EQ("Anna, Example", NameOf("commonName=Anna,organizationName=Example"));
  EXPECT_EQ("Anna, Example", NameOf("2.5.4.3=Anna,2.5.4.10=Example"));
  EXPECT_EQ("Anna, Example", NameOf("OID.2.5.4.3=Anna,oid.2.5.4.10=Example"));
  EXPECT_EQ("Anna, Example", NameOf("cn = Anna , o = Example"));
}

TEST(LegacySubjectName, DoesNotTakeOtherAttributesForThem) {
  EXPECT_EQ("Anna", NameOf("OU=Sales,SN=Petrova,CNX=No,CN=Anna,DC=o"));
}

TEST(LegacySubjectName, TakesTheFirstOfEqualAttributes) {
  EXPECT_EQ("Anna, One", NameOf("CN=Anna,O=One,CN=Boris,O=Two"));
}

TEST(LegacySubjectName, ReadsEverySeparator) {
  EXPECT_EQ("Anna, Example", NameOf("CN=Anna+O=Example"));
  EXPECT_EQ("Anna, Example", NameOf("O=Example;CN=Anna"));
  EXPECT_EQ("Anna, Example", NameOf("O=Example\r\nCN=Anna\r\n"));
  EXPECT_EQ("Anna, Example", NameOf("/C=RU/O=Example/CN=Anna"));
  EXPECT_EQ("Petrova, Anna", NameOf("/CN=Petrova, Anna"));
}

TEST(LegacySubjectName, ResolvesQuotesAndEscapes) {
  EXPECT_EQ("Petrova, Anna, Example \"East\"", NameOf("CN=\"Petrova, Anna\",O=\"Example \"\"East\"\"\""));
  EXPECT_EQ("Petrova, Anna, A+B", NameOf("CN=Petrova\\, Anna,O=A\\+B"));
  EXPECT_EQ("A\xC0z", NameOf("CN=A\\C0z"));
  EXPECT_EQ("Anna ", NameOf("CN=Anna\\  ,C=RU"));
  EXPECT_EQ("\"East\"", NameOf("CN=\\\"East\\\""));
}

TEST(LegacySubjectName, StandsBrokenSubjects) {
  EXPECT_EQ("CN", NameOf("CN"));
  EXPECT_EQ("=", NameOf("="));
  EXPECT_EQ("Anna", NameOf("CN=\"Anna"));
  EXPECT_EQ("Anna\\", NameOf("CN=Anna\\"));
  EXPECT_EQ(",,;;", NameOf(",,;;"));
  EXPECT_EQ("Anna", NameOf(",,CN=Anna,,"));
}

TEST(LegacySubjectName, IsCutToItsBuffer) {
  const std::string longName(2000, 'x');
  EXPECT_EQ(std::string(kNameSize - 1, 'x'), NameOf(("CN=" + longName + ",O=" + longName).c_str()));
  EXPECT_EQ(std::string(kNameSize - 1, 'x'), NameOf(longName.c_str()));
}

TEST(LegacySubjectName, KeepsCyrillic) {
  EXPECT_EQ(AnsiOf(L"Анна Петрова, ООО «Пример»"),
            NameOf(AnsiOf(L"C=RU, O=ООО «Пример», CN=Анна Петрова, emailAddress=a@b").c_str()));
}

class LegacyResultsModel : public ContractTest {
 protected:
  LegacyResultsModel() {
    decrypted.cert.fields = 4;
    decrypted.cert.subject = subject;
  }

  ResultsModel model() {
    verified.count = static_cast<int32_t>(entries.size());
    verified.entries = entries.data();
    return ResultsModel(
        {nullptr, showsDecryption ? &decrypted : nullptr, showsVerification ? &verified : nullptr, verificationCode});
  }
  void addSigner(int32_t status, uint32_t time = 0) {
    entries.push_back({status, time, &certificates.emplace_back()});
    certificates.back().subject = subject;
  }
  Numbers hidden() {
    const ResultsModel::Hidden all = model().hidden();
    return Numbers(all.controls, all.controls + all.count);
  }

  char subject[20] = "CN=Anna,O=Example";
  DecryptResultRecord decrypted{};
  VerifyResultRecord verified{};
  std::vector<SignStatusEntry> entries;
  std::deque<CertificateRecord> certificates;
  bool showsDecryption = true;
  bool showsVerification = true;
  int32_t verificationCode = 0;
};

TEST_F(LegacyResultsModel, WithBothPartsNothingIsHidden) { EXPECT_EQ(Numbers{}, hidden()); }

TEST_F(LegacyResultsModel, WithoutADecryptionItsControlsAreHiddenInOrder) {
  showsDecryption = false;
  EXPECT_EQ((Numbers{1025, 1005, 1021, 1026, 1006, 1003}), hidden());
}

TEST_F(LegacyResultsModel, WithoutAVerificationItsControlsAreHiddenInOrder) {
  showsVerification = false;
  EXPECT_EQ((Numbers{1027, 1007, 1022, 201, 1004, 1028}), hidden());
}

TEST_F(LegacyResultsModel, WithoutAnEncryptersCertificateItsControlsAreHidden) {
  decrypted.cert = {};
  EXPECT_EQ((Numbers{1006, 1026, 1003}), hidden());
  showsVerification = false;
  EXPECT_EQ((Numbers{1006, 1026, 1003, 1027, 1007, 1022, 201, 1004, 1028}), hidden());
}

TEST_F(LegacyResultsModel, ACertificateIsThereWithAnyOfItsPointersOrFields) {
  EXPECT_NE(nullptr, model().encrypter());
  decrypted.cert = {};
  EXPECT_EQ(nullptr, model().encrypter());
  decrypted.cert.notAfter = 7;
  EXPECT_EQ(nullptr, model().encrypter());
  decrypted.cert.fields = 1;
  EXPECT_EQ(&decrypted.cert, model().encrypter());
  decrypted.cert.fields = 0;
  uint8_t byte = 0;
  decrypted.cert.certEncoded.data = &byte;
  EXPECT_EQ(&decrypted.cert, model().encrypter());
  decrypted.cert.certEncoded.data = nullptr;
  decrypted.cert.subjectAltName.extraName = subject;
  EXPECT_EQ(&decrypted.cert, model().encrypter());
}

TEST_F(LegacyResultsModel, TheDecryptionIconShowsItsStatus) {
  EXPECT_EQ(1110, model().decryptionIcon());
  decrypted.status = 1;
  EXPECT_EQ(1109, model().decryptionIcon());
}

TEST_F(LegacyResultsModel, TheHeaderIsGoodWhenEverythingIs) {
  addSigner(0);
  EXPECT_EQ(1101, model().headerIcon());
  showsDecryption = false;
  EXPECT_EQ(1101, model().headerIcon());
  showsDecryption = true, showsVerification = false;
  EXPECT_EQ(1101, model().headerIcon());
}

TEST_F(LegacyResultsModel, TheHeaderHasRemarksWhenTheVerificationOrASignerHas) {
  addSigner(0);
  verificationCode = static_cast<int32_t>(0xE0700019);
  EXPECT_EQ(1102, model().headerIcon());
  verificationCode = 0;
  addSigner(0x7021);
  EXPECT_EQ(1102, model().headerIcon());
}

TEST_F(LegacyResultsModel, TheHeaderIsFailedWhenAnyPartIs) {
  addSigner(0x7021);
  verificationCode = static_cast<int32_t>(0xE0700019);
  decrypted.status = 5;
  EXPECT_EQ(1103, model().headerIcon());
  decrypted.status = 0;
  verificationCode = 0x7021;
  EXPECT_EQ(1103, model().headerIcon());
}

TEST_F(LegacyResultsModel, TheHeaderIsUnsignedWithoutASigner) {
  EXPECT_EQ(1112, model().headerIcon());
  verificationCode = static_cast<int32_t>(0xE0700019);
  EXPECT_EQ(1102, model().headerIcon());
}

TEST_F(LegacyResultsModel, TextsAreTheEnginesForTheCodeOfEachPart) {
  decrypted.status = 17;
  verificationCode = 18;
  engine().on("QUIVO_GetErrorText").text = "text";
  char text[kErrorTextSize + 1];
  model().decryptionStatus(text);
  EXPECT_STREQ("text", text);
  model().verificationStatus(text);
  EXPECT_EQ(17, engine().calls().at(0).number(0));
  EXPECT_EQ(256, engine().calls().at(0).number(2));
  EXPECT_EQ(18, engine().calls().at(1).number(0));
}

TEST_F(LegacyResultsModel, ARowShowsStatusNameAndTime) {
  engine().on("QUIVO_GetErrorText").text = "text";
  addSigner(0x7021, 1700000000);
  const SignerRow row = model().signer(0);
  EXPECT_STREQ("text", row.status);
  EXPECT_FALSE(row.isGood);
  EXPECT_STREQ("Anna, Example", row.name);
  EXPECT_EQ(0x7021, engine().only("QUIVO_GetErrorText").number(0));
  addSigner(0);
  EXPECT_TRUE(model().signer(1).isGood);
}

/// Lives where clocks are five hours ahead.
class FarEast {
 public:
  FarEast() { move("TST-5"); }
  ~FarEast() { move(""); }

 private:
  static void move(const char* zone) {
    _putenv_s("TZ", zone);
    _tzset();
  }
};

TEST_F(LegacyResultsModel, TimesAreUtcInTheUsersLongForm) {
  FarEast zone;
  addSigner(0, 1700000000);
  const SYSTEMTIME moment{2023, 11, 2, 14, 22, 13, 20, 0};
  char date[100], clock[100];
  ASSERT_NE(0, GetDateFormatA(LOCALE_USER_DEFAULT, DATE_LONGDATE, &moment, nullptr, date, sizeof date));
  ASSERT_NE(0, GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &moment, nullptr, clock, sizeof clock));
  EXPECT_EQ(std::string(date) + "  " + clock, model().signer(0).time);
}

TEST_F(LegacyResultsModel, TheLastSecondOf32BitsIsAYear2106) {
  addSigner(0, 0xFFFFFFFF);
  EXPECT_NE(nullptr, std::strstr(model().signer(0).time, "2106"));
}

TEST_F(LegacyResultsModel, ASignerWithoutACertificateHasNoName) {
  entries.push_back({0, 0, nullptr});
  EXPECT_STREQ("", model().signer(0).name);
  EXPECT_EQ(nullptr, model().signerCertificate(0));
}

TEST_F(LegacyResultsModel, TheButtonShowsTheSelectedSigner) {
  addSigner(0);
  addSigner(0);
  EXPECT_EQ(entries[1].cert, model().signerCertificate(1));
  EXPECT_EQ(nullptr, model().signerCertificate(-1));
  EXPECT_EQ(nullptr, model().signerCertificate(2));
}

TEST_F(LegacyResultsModel, WithoutASelectionTheOnlySignerIsShown) {
  addSigner(0);
  EXPECT_EQ(entries[0].cert, model().signerCertificate(-1));
}

TEST_F(LegacyResultsModel, AnArrayThatIsMissingHasNoSigners) {
  verified.count = 3;
  const ResultsModel missing({nullptr, nullptr, &verified, 0});
  EXPECT_EQ(0, missing.signerCount());
  EXPECT_EQ(nullptr, missing.signerCertificate(0));
}

}  // namespace
