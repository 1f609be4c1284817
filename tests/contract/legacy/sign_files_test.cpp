// Signing files with the legacy object, alone and before encryption.
#include "contract/legacy/file_operations.h"

namespace {

TEST_F(LegacyFiles, SignSignsAnUnsignedFile) {
  EXPECT_OK(sign());
  EXPECT_EQ((Names{"QUIVO_SignedInfoFile", "QUIVO_FreeSignedInfoResult", "QUIVO_SignFile"}), engine().names());
  const fake::Call& info = engine().only("QUIVO_SignedInfoFile");
  EXPECT_EQ(AnsiOf(kIn), info.text(1));
  EXPECT_TRUE(info.record(2).allZero());
  const fake::Call& call = engine().only("QUIVO_SignFile");
  EXPECT_EQ(1u, call.record(1).u32(0));
  expectZeroBut(call.record(1), {0});
  EXPECT_EQ(AnsiOf(kIn), call.text(2));
  EXPECT_TRUE(call.null(3));
  EXPECT_EQ(AnsiOf(kOut), call.text(4));
  EXPECT_EQ(0u, desktop.sheets.size());
}

TEST_F(LegacyFiles, SignDetachedByAnyNonZeroNumber) {
  for (LONG detached : {1L, -1L, 2L}) {
    engine().forgetCalls();
    EXPECT_OK(sign(detached));
    EXPECT_EQ(3u, engine().only("QUIVO_SignFile").record(1).u32(0));
  }
}

TEST_F(LegacyFiles, SignShowsTheSignaturesThatStand) {
  alreadySigned();
  EXPECT_OK(sign());
  EXPECT_EQ((Names{"QUIVO_SignedInfoFile", "QUIVO_FreeSignedInfoResult", "QUIVO_VerifyFile", "QUIVO_FreeVerifyResult",
                   "QUIVO_SignFile"}),
            engine().names());
  const fake::Call& call = engine().only("QUIVO_VerifyFile");
  EXPECT_EQ(1u, call.record(1).u32(0));
  EXPECT_EQ(0x10004u, call.record(1).u32(72));
  expectZeroBut(call.record(1), {0, 72});
  EXPECT_TRUE(call.null(2));
  EXPECT_EQ(AnsiOf(kIn), call.text(3));
  EXPECT_TRUE(call.null(4));
  EXPECT_TRUE(call.record(5).allZero());
  EXPECT_EQ(1u, desktop.sheets.size());
}

TEST_F(LegacyFiles, SignEndsWhenTheUserRefusesTheSignatures) {
  alreadySigned();
  for (INT_PTR answer : {0, 2, -1}) {
    engine().forgetCalls();
    desktop.sheetAnswer = answer;
    EXPECT_HR(S_FALSE, sign());
    EXPECT_EQ(0u, engine().count("QUIVO_SignFile"));
    EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
  }
  EXPECT_EQ(0u, desktop.messages.size());
}

TEST_F(LegacyFiles, SignEndsWithRemarksThatTheUserHasAccepted) {
  alreadySigned();
  engine().on("QUIVO_VerifyFile").result = static_cast<int32_t>(kRemarks);
  EXPECT_HR(kRemarks, sign());
  EXPECT_EQ(1u, desktop.sheets.size());
  EXPECT_EQ(0u, desktop.messages.size());
  EXPECT_EQ(0u, engine().count("QUIVO_SignFile"));
  desktop.sheetAnswer = IDCANCEL;
  EXPECT_HR(S_FALSE, sign());
}

TEST_F(LegacyFiles, SignShowsAFailedCheckOfTheSignatures) {
  alreadySigned();
  engine().on("QUIVO_VerifyFile").result = 0x7021;
  EXPECT_HR(0x7021u, sign());
  expectMessage(L"Ошибка проверки ЭП файла C:\\Договор.doc.");
  EXPECT_EQ(0x7021, engine().only("QUIVO_GetErrorText").number(0));
  EXPECT_EQ(0u, desktop.sheets.size());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
  EXPECT_EQ(0u, engine().count("QUIVO_SignFile"));
}

TEST_F(LegacyFiles, SignForcesTheTopBitOfAFailure) {
  engine().on("QUIVO_SignFile").result = 0x7020;
  EXPECT_HR(0x7020u | kForced, sign());
  expectMessage(L"Ошибка выполнения ЭП файла C:\\Договор.doc.");
  EXPECT_EQ(0x7020, engine().only("QUIVO_GetErrorText").number(0));
  engine().on("QUIVO_SignFile").result = static_cast<int32_t>(0xE0700001);
  EXPECT_HR(0xE0700001u, sign());
  engine().on("QUIVO_SignFile").result = 1;
  EXPECT_HR(kForced | 1u, sign());
}

TEST_F(LegacyFiles, SignTreatsEveryOtherAnswerAsUnsigned) {
  for (int32_t code : {1, -1, 2}) {
    engine().forgetCalls();
    engine().on("QUIVO_SignedInfoFile").result = code;
    EXPECT_OK(sign());
    EXPECT_EQ(0u, engine().count("QUIVO_VerifyFile"));
    EXPECT_EQ(1u, engine().count("QUIVO_FreeSignedInfoResult"));
  }
}

TEST_F(LegacyFiles, SignAndEncryptUsesTheRecipients) {
  engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=B")};
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:b@b")));
  engine().forgetCalls();
  EXPECT_OK(signAndEncrypt());
  EXPECT_EQ((Names{"QUIVO_SignedInfoFile", "QUIVO_FreeSignedInfoResult", "QUIVO_SignAndEncryptFile"}),
            engine().names());
  const fake::Call& call = engine().only("QUIVO_SignAndEncryptFile");
  EXPECT_EQ(1u, call.record(1).u32(0));
  expectZeroBut(call.record(1), {0});
  EXPECT_EQ(1u, call.record(2).u32(0));
  EXPECT_EQ(0u, call.record(2).u64(8));
  EXPECT_EQ(1, call.record(2).i32(16));
  EXPECT_EQ("CN=B", call.record(2).at(24).text(24));
  EXPECT_EQ(AnsiOf(kIn), call.text(3));
  EXPECT_EQ(AnsiOf(kOut), call.text(4));
}

TEST_F(LegacyFiles, SignAndEncryptShowsTheSignaturesThatStand) {
  alreadySigned();
  EXPECT_OK(signAndEncrypt());
  EXPECT_EQ(1u, desktop.sheets.size());
  const fake::Call& call = engine().only("QUIVO_VerifyFile");
  EXPECT_EQ(1u, call.record(1).u32(0));
  EXPECT_EQ(0x10004u, call.record(1).u32(72));
  EXPECT_TRUE(call.null(4));
  desktop.sheetAnswer = IDCANCEL;
  EXPECT_HR(S_FALSE, signAndEncrypt());
  EXPECT_EQ(1u, engine().count("QUIVO_SignAndEncryptFile"));
  desktop.sheetAnswer = IDOK;
  engine().on("QUIVO_VerifyFile").result = static_cast<int32_t>(kRemarks);
  EXPECT_HR(kRemarks, signAndEncrypt());
  EXPECT_EQ(1u, engine().count("QUIVO_SignAndEncryptFile"));
}

TEST_F(LegacyFiles, SignAndEncryptShowsItsFailures) {
  engine().on("QUIVO_SignAndEncryptFile").result = 0x7030;
  EXPECT_HR(0x7030u | kForced, signAndEncrypt());
  expectMessage(L"Ошибка выполнения ЭП и шифрования файла C:\\Договор.doc.");
  desktop.messages.clear();
  alreadySigned();
  engine().on("QUIVO_VerifyFile").result = 0x7021;
  EXPECT_HR(0x7021u, signAndEncrypt());
  expectMessage(L"Ошибка проверки ЭП файла C:\\Договор.doc.");
}

}  // namespace
