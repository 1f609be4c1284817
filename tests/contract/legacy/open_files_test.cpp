// Verifying and decrypting files with the legacy object.
#include "contract/legacy/file_operations.h"

namespace {

TEST_F(LegacyFiles, VerifyRemovesAllSignatures) {
  EXPECT_OK(verify());
  EXPECT_EQ((Names{"QUIVO_VerifyFile", "QUIVO_FreeVerifyResult"}), engine().names());
  const fake::Call& call = engine().only("QUIVO_VerifyFile");
  EXPECT_EQ(5u, call.record(1).u32(0));
  EXPECT_EQ(-1, call.record(1).i32(64));
  EXPECT_EQ(0x10204u, call.record(1).u32(72));
  expectZeroBut(call.record(1), {0, 64, 72});
  EXPECT_TRUE(call.null(2));
  EXPECT_EQ(AnsiOf(kIn), call.text(3));
  EXPECT_EQ(AnsiOf(kOut), call.text(4));
  EXPECT_EQ(1u, desktop.sheets.size());
}

TEST_F(LegacyFiles, VerifyReturnsRemarksUnlessTheUserRefuses) {
  engine().on("QUIVO_VerifyFile").result = static_cast<int32_t>(kRemarks);
  EXPECT_HR(kRemarks, verify());
  EXPECT_EQ(1u, desktop.sheets.size());
  desktop.sheetAnswer = 0;
  EXPECT_HR(S_FALSE, verify());
  engine().on("QUIVO_VerifyFile").result = 0;
  EXPECT_HR(S_FALSE, verify());
  EXPECT_EQ(0u, desktop.messages.size());
}

TEST_F(LegacyFiles, VerifyShowsAFailureAndReturnsItUnchanged) {
  for (uint32_t code : {0x7021u, 0xE0700020u, 1u}) {
    desktop.messages.clear();
    engine().on("QUIVO_VerifyFile").result = static_cast<int32_t>(code);
    EXPECT_HR(code, verify());
    expectMessage(L"Ошибка проверки ЭП файла C:\\Договор.doc.");
  }
  EXPECT_EQ(0u, desktop.sheets.size());
  EXPECT_EQ(3u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_F(LegacyFiles, ResultsLiveWhileTheSheetIsShown) {
  size_t freed = 1;
  desktop.duringSheet = [&] { freed = engine().count("QUIVO_FreeVerifyResult"); };
  EXPECT_OK(verify());
  EXPECT_EQ(0u, freed);
}

TEST_F(LegacyFiles, UnencryptDecrypts) {
  InputFile in;
  EXPECT_OK(unencrypt(in));
  EXPECT_EQ((Names{"QUIVO_DecryptFile", "QUIVO_FreeDecryptResult"}), engine().names());
  const fake::Call& call = engine().only("QUIVO_DecryptFile");
  EXPECT_EQ(1u, call.record(1).u32(0));
  EXPECT_EQ(0x10204u, call.record(1).u32(16));
  expectZeroBut(call.record(1), {0, 16});
  EXPECT_EQ(AnsiOf(in.path()), call.text(2));
  EXPECT_EQ(AnsiOf(kOut), call.text(3));
  EXPECT_TRUE(call.record(4).allZero());
}

TEST_F(LegacyFiles, UnencryptShowsTheResultOnlyWhenAskedTo) {
  InputFile in;
  engine().on("QUIVO_DecryptFile").result = 0x7035;
  EXPECT_HR(0x7035u, unencrypt(in, 0));
  EXPECT_EQ(0u, desktop.sheets.size());
  EXPECT_HR(0x7035u, unencrypt(in, 1));
  EXPECT_EQ(1u, desktop.sheets.size());
  EXPECT_EQ(0u, desktop.messages.size());
  desktop.sheetAnswer = IDCANCEL;
  EXPECT_HR(S_FALSE, unencrypt(in, -1));
  engine().on("QUIVO_DecryptFile").result = 0;
  EXPECT_HR(S_FALSE, unencrypt(in, 1));
  EXPECT_OK(unencrypt(in, 0));
  EXPECT_EQ(5u, engine().count("QUIVO_FreeDecryptResult"));
}

TEST_F(LegacyFiles, UnencryptMakesAReadOnlyInputWritable) {
  InputFile in(FILE_ATTRIBUTE_READONLY);
  ASSERT_TRUE(in.isReadOnly());
  EXPECT_OK(unencrypt(in));
  EXPECT_FALSE(in.isReadOnly());
}

TEST_F(LegacyFiles, VerifyAndUnencryptMakesAReadOnlyInputWritable) {
  InputFile in(FILE_ATTRIBUTE_READONLY);
  EXPECT_OK(verifyAndUnencrypt(in));
  EXPECT_FALSE(in.isReadOnly());
}

TEST_F(LegacyFiles, AMissingInputIsShownWithTheSystemsError) {
  EXPECT_HR(S_FALSE, object->Unencrypt(Bstr(L"C:\\нет такого.p7e"), Bstr(kOut), 1));
  expectMessage(L"Ошибка доступа к файлу C:\\нет такого.p7e.");
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, engine().only("QUIVO_GetErrorText").number(0));
  EXPECT_EQ(Names{"QUIVO_GetErrorText"}, engine().names());
  desktop.messages.clear();
  EXPECT_HR(S_FALSE, object->VerifyAndUnencrypt(Bstr(L"C:\\нет такого.p7e"), Bstr(kOut)));
  expectMessage(L"Ошибка доступа к файлу C:\\нет такого.p7e.");
}

TEST_F(LegacyFiles, AFolderIsNoInput) {
  // The attributes of a folder are read without a failure: the number is the thread's last error, whatever it is.
  SetLastError(ERROR_BUSY);
  EXPECT_HR(S_FALSE, object->Unencrypt(Bstr(L"C:\\windows"), Bstr(kOut), 0));
  expectMessage(L"Ошибка доступа к файлу C:\\windows.");
  EXPECT_EQ(ERROR_BUSY, engine().only("QUIVO_GetErrorText").number(0));
  desktop.messages.clear();
  EXPECT_HR(S_FALSE, object->VerifyAndUnencrypt(Bstr(L"C:\\windows"), Bstr(kOut)));
  expectMessage(L"Ошибка доступа к файлу C:\\windows.");
  EXPECT_EQ(0u, engine().count("QUIVO_DecryptFile") + engine().count("QUIVO_DecryptAndVerifyFile"));
}

BOOL WINAPI RefuseAttributes(LPCSTR, DWORD) {
  SetLastError(ERROR_WRITE_PROTECT);
  return FALSE;
}

TEST_F(LegacyFiles, AnInputThatStaysReadOnlyIsShown) {
  InputFile in(FILE_ATTRIBUTE_READONLY);
  ImportPatch refuse(Module::get().handle(), "SetFileAttributesA", reinterpret_cast<void*>(RefuseAttributes));
  EXPECT_HR(S_FALSE, unencrypt(in));
  expectMessage(L"Ошибка доступа к файлу " + in.path() + L".");
  EXPECT_EQ(ERROR_WRITE_PROTECT, engine().only("QUIVO_GetErrorText").number(0));
  EXPECT_EQ(0u, engine().count("QUIVO_DecryptFile"));
}

TEST_F(LegacyFiles, OtherAttributesOfAReadOnlyInputStay) {
  InputFile in(FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
  const DWORD before = GetFileAttributesW(in.path().c_str());
  EXPECT_OK(unencrypt(in));
  EXPECT_EQ(before & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY), GetFileAttributesW(in.path().c_str()));
}

TEST_F(LegacyFiles, OperationsWithoutAnInputCheckLeaveTheFileToTheEngine) {
  EXPECT_OK(object->Encrypt(Bstr(L"C:\\нет такого"), Bstr(kOut)));
  EXPECT_OK(object->Verify(Bstr(L"C:\\нет такого"), Bstr(kOut)));
  EXPECT_EQ(0u, desktop.messages.size());
}

TEST_F(LegacyFiles, VerifyAndUnencryptDoesBothInOneCall) {
  InputFile in;
  EXPECT_OK(verifyAndUnencrypt(in));
  EXPECT_EQ((Names{"QUIVO_DecryptAndVerifyFile", "QUIVO_FreeVerifyResult", "QUIVO_FreeDecryptResult"}),
            engine().names());
  const fake::Call& call = engine().only("QUIVO_DecryptAndVerifyFile");
  EXPECT_EQ(1u, call.record(1).u32(0));
  expectZeroBut(call.record(1), {0});
  EXPECT_EQ(5u, call.record(2).u32(0));
  EXPECT_EQ(-1, call.record(2).i32(64));
  expectZeroBut(call.record(2), {0, 64});
  EXPECT_EQ(AnsiOf(in.path()), call.text(3));
  EXPECT_EQ(AnsiOf(kOut), call.text(4));
  EXPECT_TRUE(call.record(5).allZero());
  EXPECT_TRUE(call.record(6).allZero());
  EXPECT_EQ(1u, desktop.sheets.size());
}

TEST_F(LegacyFiles, VerifyAndUnencryptReturnsRemarksUnlessTheUserRefuses) {
  InputFile in;
  engine().on("QUIVO_DecryptAndVerifyFile").result = static_cast<int32_t>(kRemarks);
  EXPECT_HR(kRemarks, verifyAndUnencrypt(in));
  desktop.sheetAnswer = IDCANCEL;
  EXPECT_HR(S_FALSE, verifyAndUnencrypt(in));
  EXPECT_EQ(2u, desktop.sheets.size());
  EXPECT_EQ(0u, desktop.messages.size());
}

TEST_F(LegacyFiles, VerifyAndUnencryptShowsAFailureAndReturnsItUnchanged) {
  InputFile in;
  engine().on("QUIVO_DecryptAndVerifyFile").result = 0x7035;
  EXPECT_HR(0x7035u, verifyAndUnencrypt(in));
  expectMessage(L"Ошибка расшифрования/проверки ЭП файла " + in.path() + L".");
  EXPECT_EQ(0u, desktop.sheets.size());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeDecryptResult"));
}

}  // namespace
