// The signed copy that the file-open entry keeps of a signed and encrypted file.
#include "contract/legacy/file_open_test.h"

namespace {

UINT checkedState = BST_CHECKED;
UINT WINAPI IsChecked(HWND, int id) { return id == 119 ? checkedState : 0; }

class FileOpenKeepTest : public FileOpenTest {
 protected:
  void SetUp() override {
    FileOpenTest::SetUp();
    checkedState = BST_CHECKED;
    keepSignedCopy();
  }
  /// Sets the check box of the panel, as the user's click and the dialog's acceptance do.
  void keepSignedCopy() {
    desktop.saveAnswer = [](OPENFILENAMEA& dialog) {
      const HWND panel = reinterpret_cast<HWND>(0x77);
      OFNOTIFYA accepted{};
      accepted.hdr.code = static_cast<UINT>(CDN_FILEOK);
      accepted.lpOFN = &dialog;
      dialog.lpfnHook(panel, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&accepted));
      return true;
    };
  }
  void expectFolderError(const std::wstring& wanted) {
    const ShownMessage message = desktop.onlyMessage();
    EXPECT_EQ(L"Ошибка создания директории " + wanted + L" для сохранения подписанного файла.", message.text);
    EXPECT_EQ(L"Криптографическое расширение", message.caption);
    EXPECT_EQ(static_cast<UINT>(MB_ICONERROR), message.style);
    EXPECT_EQ(desktop.active, message.owner);
  }
  std::wstring kept() { return path(L"P7S\\a.txt.p7s"); }
  ImportPatch check{Module::get().handle(), "IsDlgButtonChecked", reinterpret_cast<void*>(IsChecked)};
};

TEST_F(FileOpenKeepTest, TheSignedCopyIsDecryptedIntoItsFolder) {
  const std::wstring file = create(L"a.txt.p7a");
  open(file);
  EXPECT_EQ((Calls{L"Init My", L"VerifyAndUnencrypt " + file + L" -> " + path(L"a.txt"),
                   L"Unencrypt " + file + L" -> " + kept()}),
            object.calls);
  const ShownMessage message = desktop.onlyMessage();
  EXPECT_EQ(L"Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл " + path(L"a.txt") +
                L".\nПодписанный файл сохранен в файл " + kept() + L".",
            message.text);
  EXPECT_EQ(static_cast<UINT>(MB_ICONINFORMATION), message.style);
  EXPECT_TRUE(GetFileAttributesW(path(L"P7S").c_str()) & FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(folder, rememberedFolder());
}

TEST_F(FileOpenKeepTest, AFolderThatStandsIsUsed) {
  CreateDirectoryW(path(L"P7S").c_str(), nullptr);
  open(create(L"a.txt.p7a"));
  EXPECT_EQ(3u, object.calls.size());
  EXPECT_EQ(static_cast<UINT>(MB_ICONINFORMATION), desktop.onlyMessage().style);
}

TEST_F(FileOpenKeepTest, AFailedCopyIsShownAndEndsTheRun) {
  object.answers[L"Unencrypt"] = {0x7035};
  open(create(L"a.txt.p7a"));
  const ShownMessage message = desktop.onlyMessage();
  EXPECT_EQ(L"Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл " + path(L"a.txt") +
                L".\nПри сохранении подписанного файла произошла ошибка.",
            message.text);
  EXPECT_EQ(static_cast<UINT>(MB_ICONWARNING), message.style);
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenKeepTest, AFolderThatCannotBeMadeIsReportedAndTheRunGoesOn) {
  desktop.saveAnswer = [answer = desktop.saveAnswer](OPENFILENAMEA& dialog) {
    lstrcpyA(dialog.lpstrFile, "Q:\\missing\\a.txt");
    return answer(dialog);
  };
  const std::wstring file = create(L"a.txt.p7a");
  open(file);
  expectFolderError(L"Q:\\missing\\P7S");
  EXPECT_EQ((Calls{L"Init My", L"VerifyAndUnencrypt " + file + L" -> Q:\\missing\\a.txt"}), object.calls);
  EXPECT_EQ(L"Q:\\missing", rememberedFolder());
}

TEST_F(FileOpenKeepTest, AFileInThePlaceOfTheFolderIsReportedAndTheRunGoesOn) {
  create(L"P7S");
  const std::wstring file = create(L"a.txt.p7a");
  open(file);
  expectFolderError(path(L"P7S"));
  EXPECT_EQ((Calls{L"Init My", L"VerifyAndUnencrypt " + file + L" -> " + path(L"a.txt")}), object.calls);
  EXPECT_EQ(folder, rememberedFolder());
  EXPECT_FALSE(GetFileAttributesW(path(L"P7S").c_str()) & FILE_ATTRIBUTE_DIRECTORY);
}

TEST_F(FileOpenKeepTest, WithoutTheMarkNothingIsKept) {
  checkedState = BST_UNCHECKED;
  open(create(L"a.txt.p7a"));
  EXPECT_EQ(2u, object.calls.size());
  EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(path(L"P7S").c_str()));
}

TEST_F(FileOpenKeepTest, AfterAFailureNothingIsKept) {
  object.answers[L"VerifyAndUnencrypt"] = {S_FALSE};
  open(create(L"a.txt.p7a"));
  EXPECT_EQ(2u, object.calls.size());
  EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(path(L"P7S").c_str()));
}

}  // namespace
