// The legacy object's operations on files: encryption, and what holds for all of them.
#include "contract/legacy/file_operations.h"

namespace {

TEST_F(LegacyFiles, AFailureIsShownBeforeItsResultIsGivenBack) {
  InputFile in;
  alreadySigned();
  engine().on("QUIVO_VerifyFile").result = 0x7021;
  engine().on("QUIVO_DecryptAndVerifyFile").result = 0x7021;
  EXPECT_HR(0x7021u, verify());
  EXPECT_EQ((Names{"QUIVO_VerifyFile", "QUIVO_GetErrorText", "QUIVO_FreeVerifyResult"}), engine().names());
  engine().forgetCalls();
  EXPECT_HR(0x7021u, sign());
  EXPECT_EQ((Names{"QUIVO_SignedInfoFile", "QUIVO_FreeSignedInfoResult", "QUIVO_VerifyFile", "QUIVO_GetErrorText",
                   "QUIVO_FreeVerifyResult"}),
            engine().names());
  engine().forgetCalls();
  EXPECT_HR(0x7021u, verifyAndUnencrypt(in));
  EXPECT_EQ(
      (Names{"QUIVO_DecryptAndVerifyFile", "QUIVO_GetErrorText", "QUIVO_FreeVerifyResult", "QUIVO_FreeDecryptResult"}),
      engine().names());
}

TEST_F(LegacyFiles, EveryCallIsOfTheObjectsSession) {
  object->Uninit();
  engine().on("QUIVO_Initialize").handle = reinterpret_cast<void*>(0x7000);
  openSession();
  InputFile in;
  engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=B")};
  fake::Certificate valid;
  valid.notAfter = static_cast<uint32_t>(desktop.now) + 1;
  engine().on("QUIVO_VerifyCert").certificate = valid;
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:b@b")));
  EXPECT_OK(object->AddRecipDERCert(Bstr(L"der")));
  EXPECT_HR(S_FALSE, object->IsSigned(Bstr(kIn)));
  alreadySigned();
  EXPECT_OK(sign());
  EXPECT_OK(signAndEncrypt());
  EXPECT_OK(verify());
  EXPECT_OK(encrypt());
  EXPECT_OK(unencrypt(in));
  EXPECT_OK(verifyAndUnencrypt(in));
  EXPECT_OK(object->FreeRecipCerts());
  EXPECT_EQ(27u, engine().calls().size());
  for (const fake::Call& call : engine().calls()) EXPECT_EQ(0x7000u, call.value(0)) << call.function;
}

TEST_F(LegacyFiles, EncryptPassesTheListWithoutCopyingIt) {
  engine().on("QUIVO_FindCert").certificates = {CertificateOf("CN=B"), CertificateOf("CN=C")};
  EXPECT_OK(object->SetRecipients(Bstr(L"SMTP:b@b")));
  engine().forgetCalls();
  EXPECT_OK(encrypt());
  EXPECT_OK(encrypt());
  EXPECT_EQ((Names{"QUIVO_EncryptFile", "QUIVO_EncryptFile"}), engine().names());
  const fake::Call& call = engine().last();
  EXPECT_EQ(1u, call.record(1).u32(0));
  EXPECT_EQ(2, call.record(1).i32(16));
  EXPECT_EQ("CN=B", call.record(1).at(24).text(24));
  EXPECT_EQ(engine().calls()[0].record(1).pointer(24), call.record(1).pointer(24));
  EXPECT_EQ(AnsiOf(kIn), call.text(2));
  EXPECT_EQ(AnsiOf(kOut), call.text(3));
}

TEST_F(LegacyFiles, EncryptWithoutRecipientsIsLeftToTheEngine) {
  EXPECT_OK(encrypt());
  const fake::Snapshot& param = engine().only("QUIVO_EncryptFile").record(1);
  expectZeroBut(param, {0});
}

TEST_F(LegacyFiles, EncryptForcesTheTopBitOfAFailure) {
  engine().on("QUIVO_EncryptFile").result = 0x7030;
  EXPECT_HR(0x7030u | kForced, encrypt());
  expectMessage(L"Ошибка выполнения шифрования файла C:\\Договор.doc.");
  engine().on("QUIVO_EncryptFile").result = -2;
  EXPECT_HR(-2, encrypt());
}

TEST_F(LegacyFiles, TheSheetIsModalWithoutAnApplyButton) {
  EXPECT_OK(verify());
  ASSERT_EQ(1u, desktop.sheets.size());
  const ShownSheet& sheet = desktop.sheets[0];
  EXPECT_EQ(L"КОРВИС (x64)", sheet.caption);
  EXPECT_EQ(static_cast<DWORD>(PSH_USECALLBACK | PSH_NOAPPLYNOW), sheet.flags);
  EXPECT_TRUE(sheet.hasCallback);
  EXPECT_EQ(desktop.active, sheet.owner);
  EXPECT_EQ(1u, sheet.pages);
  EXPECT_EQ(117, sheet.pageTemplate);
  EXPECT_EQ(static_cast<DWORD>(PSP_USECALLBACK), sheet.pageFlags);
  EXPECT_TRUE(sheet.pageHasCallback);
}

TEST_F(LegacyFiles, AMessageOfALongNameIsCutAndKeepsItsReason) {
  const std::wstring name = L"C:\\" + std::wstring(3000, L'я');
  engine().on("QUIVO_EncryptFile").result = 2;
  engine().on("QUIVO_GetErrorText").text = std::string(5000, 'x');
  EXPECT_HR(kForced | 2u, object->Encrypt(Bstr(name), Bstr(kOut)));
  const std::wstring text = desktop.onlyMessage().text;
  const std::wstring whole = L"Ошибка выполнения шифрования файла " + name;
  const size_t end = text.find(L'\n');
  ASSERT_NE(std::wstring::npos, end);
  EXPECT_LE(end, 1024u);
  EXPECT_GE(end, 1000u);
  EXPECT_EQ(whole.substr(0, end), text.substr(0, end));
  EXPECT_EQ(std::wstring(255, L'x'), text.substr(end + 1));
}

TEST_F(LegacyFiles, AReasonThatTheEngineDoesNotWriteIsEmpty) {
  engine().on("QUIVO_EncryptFile").result = 2;
  // What an earlier reason left on the stack is not shown.
  engine().on("QUIVO_GetErrorText").text = std::string(200, 'x');
  EXPECT_HR(kForced | 2u, object->Encrypt(Bstr(L"C:\\a.txt"), Bstr(kOut)));
  desktop.messages.clear();
  engine().on("QUIVO_GetErrorText").writesNothing = true;
  EXPECT_HR(kForced | 2u, object->Encrypt(Bstr(L"C:\\a.txt"), Bstr(kOut)));
  EXPECT_EQ(L"Ошибка выполнения шифрования файла C:\\a.txt.\n", desktop.onlyMessage().text);
}

TEST_F(LegacyFiles, AFormatInANameIsNotRead) {
  engine().on("QUIVO_EncryptFile").result = 2;
  engine().on("QUIVO_GetErrorText").text = "%s%n";
  EXPECT_HR(kForced | 2u, object->Encrypt(Bstr(L"C:\\%s%d.txt"), Bstr(kOut)));
  EXPECT_EQ(L"Ошибка выполнения шифрования файла C:\\%s%d.txt.\n%s%n", desktop.onlyMessage().text);
}

TEST_F(LegacyFiles, NullNamesAreEmpty) {
  EXPECT_OK(object->Encrypt(nullptr, nullptr));
  EXPECT_EQ("", engine().only("QUIVO_EncryptFile").text(2));
  EXPECT_EQ("", engine().only("QUIVO_EncryptFile").text(3));
}

TEST_F(LegacyFiles, WithoutMemoryForANameTheEngineIsNotCalled) {
  InputFile in;
  const std::vector<std::function<HRESULT()>> operations = {
      [&] { return sign(); },    [&] { return signAndEncrypt(); }, [&] { return verify(); },
      [&] { return encrypt(); }, [&] { return unencrypt(in); },    [&] { return verifyAndUnencrypt(in); }};
  for (const auto& operation : operations) {
    for (long succeeding : {0L, 1L}) {
      Module::get().failAllocation(succeeding);
      EXPECT_HR(E_OUTOFMEMORY, operation());
      Module::get().failAllocation(-1);
    }
  }
  EXPECT_EQ(0u, engine().calls().size());
}

TEST_F(LegacyFiles, WithoutASessionTheEngineRefuses) {
  object->Uninit();
  engine().forgetCalls();
  EXPECT_OK(encrypt());
  EXPECT_TRUE(engine().only("QUIVO_EncryptFile").null(0));
}

}  // namespace
