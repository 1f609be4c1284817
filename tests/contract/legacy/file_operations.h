// The base of the tests of the legacy object's operations on files.
#pragma once

#include "contract/legacy/legacy_test.h"
#include "support/certificates.h"

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
    // Not signed, unless a test changes that.
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
