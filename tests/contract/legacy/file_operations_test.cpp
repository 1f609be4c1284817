// The legacy object's operations on files: what the engine is asked, what the user is shown, what is returned.
#include <cstdio>

#include "contract/legacy/legacy_test.h"
#include "support/certificates.h"

namespace {

constexpr const wchar_t* kIn = L"C:\\Договор.doc";
constexpr const wchar_t* kOut = L"C:\\Договор.doc.p7s";
constexpr uint32_t kForced = 0x80000000;

/// An input file that stands, with attributes; gone with this object.
class InputFile {
 public:
  explicit InputFile(DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    path_ = std::wstring(folder) + L"входной файл " + std::to_wstring(GetCurrentProcessId()) + L".p7e";
    CloseHandle(CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    SetFileAttributesW(path_.c_str(), attributes);
  }
  ~InputFile() {
    SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path_.c_str());
  }
  const std::wstring& path() const { return path_; }
  bool isReadOnly() const { return (GetFileAttributesW(path_.c_str()) & FILE_ATTRIBUTE_READONLY) != 0; }

 private:
  std::wstring path_;
};

class LegacyFiles : public LegacyTest {
 protected:
  void SetUp() override {
    LegacyTest::SetUp();
    openSession();
    // Not signed, unless a test says so.
    engine().on("QUIVO_SignedInfoFile").result = 0x7011;
    engine().on("QUIVO_GetErrorText").text = AnsiOf(L"Причина.");
    engine().on("QUIVO_VerifyFile").signatures.resize(1);
  }
  void alreadySigned() { engine().on("QUIVO_SignedInfoFile").result = 0; }
  HRESULT sign(LONG detached = 0) { return object->Sign(Bstr(kIn), Bstr(kOut), detached); }
  HRESULT signAndEncrypt() { return object->SignAndEncrypt(Bstr(kIn), Bstr(kOut)); }
  HRESULT verify() { return object->Verify(Bstr(kIn), Bstr(kOut)); }
  HRESULT encrypt() { return object->Encrypt(Bstr(kIn), Bstr(kOut)); }
  HRESULT unencrypt(const InputFile& in, LONG show = 0) { return object->Unencrypt(Bstr(in.path()), Bstr(kOut), show); }
  HRESULT verifyAndUnencrypt(const InputFile& in) { return object->VerifyAndUnencrypt(Bstr(in.path()), Bstr(kOut)); }

  void expectMessage(const std::wstring& text) {
    const ShownMessage message = desktop.onlyMessage();
    EXPECT_EQ(text + L"\nПричина.", message.text);
    EXPECT_EQ(L"КОРВИС (x64)", message.caption);
    EXPECT_EQ(0x10010u, message.style);
    EXPECT_EQ(desktop.foreground, message.owner);
  }
  /// A record that is zero but for the fields at `offsets`, each of four bytes.
  void expectZeroBut(fake::Snapshot record, std::initializer_list<size_t> offsets) {
    for (size_t offset : offsets) std::fill_n(record.bytes.begin() + static_cast<ptrdiff_t>(offset), 4, uint8_t{0});
    EXPECT_TRUE(record.allZero());
  }
};

using Names = std::vector<std::string>;

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

TEST_F(LegacyFiles, SignTellsAFailedCheckOfTheSignatures) {
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

TEST_F(LegacyFiles, SignAndEncryptTellsItsFailures) {
  engine().on("QUIVO_SignAndEncryptFile").result = 0x7030;
  EXPECT_HR(0x7030u | kForced, signAndEncrypt());
  expectMessage(L"Ошибка выполнения ЭП и шифрования файла C:\\Договор.doc.");
  desktop.messages.clear();
  alreadySigned();
  engine().on("QUIVO_VerifyFile").result = 0x7021;
  EXPECT_HR(0x7021u, signAndEncrypt());
  expectMessage(L"Ошибка проверки ЭП файла C:\\Договор.doc.");
}

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

TEST_F(LegacyFiles, VerifyTellsAFailureAndReturnsItAsItStands) {
  for (uint32_t code : {0x7021u, 0xE0700020u, 1u}) {
    desktop.messages.clear();
    engine().on("QUIVO_VerifyFile").result = static_cast<int32_t>(code);
    EXPECT_HR(code, verify());
    expectMessage(L"Ошибка проверки ЭП файла C:\\Договор.doc.");
  }
  EXPECT_EQ(0u, desktop.sheets.size());
  EXPECT_EQ(3u, engine().count("QUIVO_FreeVerifyResult"));
}

TEST_F(LegacyFiles, AFailureIsToldBeforeItsResultIsGivenBack) {
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

TEST_F(LegacyFiles, ResultsLiveWhileTheSheetIsShown) {
  size_t freed = 1;
  desktop.duringSheet = [&] { freed = engine().count("QUIVO_FreeVerifyResult"); };
  EXPECT_OK(verify());
  EXPECT_EQ(0u, freed);
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
  EXPECT_EQ(416u, call.record(4).bytes.size());
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

TEST_F(LegacyFiles, AMissingInputIsToldWithTheSystemsError) {
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

BOOL WINAPI refuseAttributes(LPCSTR, DWORD) {
  SetLastError(ERROR_WRITE_PROTECT);
  return FALSE;
}

TEST_F(LegacyFiles, AnInputThatStaysReadOnlyIsTold) {
  InputFile in(FILE_ATTRIBUTE_READONLY);
  ImportPatch refuse(Module::get().handle(), "SetFileAttributesA", reinterpret_cast<void*>(refuseAttributes));
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

TEST_F(LegacyFiles, VerifyAndUnencryptTellsAFailureAndReturnsItAsItStands) {
  InputFile in;
  engine().on("QUIVO_DecryptAndVerifyFile").result = 0x7035;
  EXPECT_HR(0x7035u, verifyAndUnencrypt(in));
  expectMessage(L"Ошибка расшифрования/проверки ЭП файла " + in.path() + L".");
  EXPECT_EQ(0u, desktop.sheets.size());
  EXPECT_EQ(1u, engine().count("QUIVO_FreeVerifyResult"));
  EXPECT_EQ(1u, engine().count("QUIVO_FreeDecryptResult"));
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
