// The file-open entry, step by step: against an object of the test's under the name that the entry asks for.
#include <functional>
#include <map>

#include "contract/legacy/file_open_test.h"

namespace {

TEST_F(FileOpenTest, ASignedFileIsVerified) {
  const std::wstring file = create(L"Отчёт за год.doc.p7s");
  open(file);
  EXPECT_EQ((Calls{L"Init My", L"Verify " + file + L" -> " + path(L"Отчёт за год.doc")}), object.calls);
  EXPECT_EQ(0u, desktop.messages.size());
  EXPECT_EQ(0u, desktop.executions.size());
  EXPECT_EQ(folder, rememberedFolder());
}

TEST_F(FileOpenTest, TheExtensionIsReadInAnyCase) {
  const std::wstring file = create(L"REPORT.P7S");
  open(file);
  EXPECT_EQ((Calls{L"Init My", L"Verify " + file + L" -> " + path(L"REPORT")}), object.calls);
}

TEST_F(FileOpenTest, AnEncryptedFileIsDecryptedAndShown) {
  const std::wstring file = create(L"report.doc.p7E");
  open(file);
  EXPECT_EQ((Calls{L"Init My", L"UnencryptAndShow " + file + L" -> " + path(L"report.doc")}), object.calls);
  EXPECT_EQ(0u, desktop.messages.size());
}

TEST_F(FileOpenTest, ASignedAndEncryptedFileIsDecryptedAndVerified) {
  const std::wstring file = create(L"a.txt.p7a");
  open(file);
  EXPECT_EQ((Calls{L"Init My", L"VerifyAndUnencrypt " + file + L" -> " + path(L"a.txt")}), object.calls);
  const ShownMessage message = desktop.onlyMessage();
  EXPECT_EQ(L"Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл " + path(L"a.txt") + L".",
            message.text);
  EXPECT_EQ(L"Криптографическое расширение", message.caption);
  EXPECT_EQ(static_cast<UINT>(MB_ICONINFORMATION), message.style);
  EXPECT_EQ(desktop.active, message.owner);
}

TEST_F(FileOpenTest, ANullOrMissingPathIsPassedOver) {
  entry()(nullptr, nullptr, nullptr, 0);
  open(path(L"missing.p7s"));
  open(L"");
  EXPECT_EQ(0, object.created);
  EXPECT_EQ(0u, desktop.saveDialogs.size());
}

TEST_F(FileOpenTest, AFileWithoutADotIsPassedOver) {
  // A path of its own: the folder of the others may hold a dot.
  const std::string file = "C:\\tavlcom-no-dot";
  CloseHandle(CreateFileA(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  open(WideOf(file.c_str()));
  DeleteFileA(file.c_str());
  EXPECT_EQ(0, object.created);
  EXPECT_EQ(0u, desktop.saveDialogs.size() + desktop.messages.size());
}

TEST_F(FileOpenTest, TheSaveDialogProposesTheResult) {
  WriteText(HKEY_CURRENT_USER, kLegacyKey, L"InputDirectory", L"C:\\windows");
  open(create(L"a.txt.p7e"));
  ASSERT_EQ(1u, desktop.saveDialogs.size());
  const ShownSaveDialog& dialog = desktop.saveDialogs[0];
  EXPECT_EQ(sizeof(OPENFILENAMEA), dialog.size);
  EXPECT_EQ(0x8080Eu, dialog.flags);
  EXPECT_EQ(desktop.active, dialog.owner);
  EXPECT_EQ(L"Все файлы (*.*)", dialog.filter);
  EXPECT_EQ(L"*.*", dialog.filterPattern);
  EXPECT_EQ(path(L"a.txt"), dialog.path);
  EXPECT_EQ(260u, dialog.pathSize);
  EXPECT_EQ(L"C:\\windows", dialog.startFolder);
  EXPECT_FALSE(dialog.hasHook);
  EXPECT_EQ(0, dialog.panel);
}

TEST_F(FileOpenTest, TheSaveDialogCarriesThePanelForASignedAndEncryptedFile) {
  open(create(L"a.txt.P7A"));
  ASSERT_EQ(1u, desktop.saveDialogs.size());
  EXPECT_EQ(0x8086Eu, desktop.saveDialogs[0].flags);
  EXPECT_TRUE(desktop.saveDialogs[0].hasHook);
  EXPECT_EQ(118, desktop.saveDialogs[0].panel);
}

TEST_F(FileOpenTest, ACancelledSaveDialogEndsTheRun) {
  desktop.saveAnswer = [](OPENFILENAMEA&) { return false; };
  open(create(L"a.txt.p7a"));
  EXPECT_EQ(0, object.created);
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenTest, TheChosenPathIsTheResult) {
  desktop.saveAnswer = [](OPENFILENAMEA& dialog) {
    return lstrcpyA(dialog.lpstrFile, "D:\\elsewhere\\b.txt") != nullptr;
  };
  const std::wstring file = create(L"a.txt.p7s");
  open(file);
  EXPECT_EQ((Calls{L"Init My", L"Verify " + file + L" -> D:\\elsewhere\\b.txt"}), object.calls);
  EXPECT_EQ(L"D:\\elsewhere", rememberedFolder());
}

TEST_F(FileOpenTest, TheStartFolderIsReadAsTextOfEitherType) {
  auto write = [&](DWORD type, const std::string& data) {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, kLegacyKey, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
    RegSetValueExA(key, "InputDirectory", 0, type, reinterpret_cast<const BYTE*>(data.data()),
                   static_cast<DWORD>(data.size()));
    RegCloseKey(key);
    desktop.saveDialogs.clear();
    open(create(L"a.p7m"));
    return desktop.saveDialogs.at(0).startFolder;
  };
  EXPECT_EQ(L"C:\\one", write(REG_SZ, "C:\\one"));
  EXPECT_EQ(L"C:\\two", write(REG_EXPAND_SZ, "C:\\two"));
  EXPECT_EQ(L"", write(REG_BINARY, "C:\\six"));
  EXPECT_EQ(L"", write(REG_DWORD, "four"));
  EXPECT_EQ(L"", write(REG_SZ, std::string(300, 'x')));
  // With its terminator, 260 and 261 bytes.
  EXPECT_EQ(std::wstring(259, L'x'), write(REG_SZ, std::string(259, 'x')));
  EXPECT_EQ(L"", write(REG_SZ, std::string(260, 'x')));
}

TEST_F(FileOpenTest, ExecuteResultWritesAndOpensWithoutAsking) {
  setExecuteResult(1);
  const std::wstring file = create(L"a.txt.p7s");
  open(file);
  EXPECT_EQ(0u, desktop.saveDialogs.size() + desktop.messages.size());
  EXPECT_EQ((Calls{L"Init My", L"Verify " + file + L" -> " + path(L"a.txt")}), object.calls);
  ASSERT_EQ(1u, desktop.executions.size());
  EXPECT_EQ(0x240u, desktop.executions[0].mask);
  EXPECT_EQ(L"open", desktop.executions[0].verb);
  EXPECT_EQ(path(L"a.txt"), desktop.executions[0].file);
  EXPECT_EQ(SW_SHOWNORMAL, desktop.executions[0].show);
  EXPECT_EQ(folder, rememberedFolder());
}

TEST_F(FileOpenTest, TheResultIsOpenedBeforeItsFolderIsRemembered) {
  setExecuteResult(1);
  std::wstring during;
  desktop.duringExecution = [&] { during = rememberedFolder(); };
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(L"(none)", during);
  EXPECT_EQ(folder, rememberedFolder());
}

TEST_F(FileOpenTest, AResultWithoutAFolderIsNotRemembered) {
  desktop.saveAnswer = [](OPENFILENAMEA& dialog) { return lstrcpyA(dialog.lpstrFile, "b.txt") != nullptr; };
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(2u, object.calls.size());
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenTest, ExecuteResultAsksBeforeItOverwrites) {
  setExecuteResult(7);
  create(L"a.txt");
  const std::wstring file = create(L"a.txt.p7s");
  desktop.messageAnswer = IDNO;
  open(file);
  const ShownMessage message = desktop.onlyMessage();
  EXPECT_EQ(L"Файл " + path(L"a.txt") + L" уже существует. Перезаписать?", message.text);
  EXPECT_EQ(L"Криптографическое расширение", message.caption);
  EXPECT_EQ(static_cast<UINT>(MB_YESNO | MB_ICONQUESTION), message.style);
  EXPECT_EQ(0, object.created);
  EXPECT_EQ(0u, desktop.executions.size());
  EXPECT_EQ(L"(none)", rememberedFolder());
  desktop.messageAnswer = IDYES;
  open(file);
  EXPECT_EQ((Calls{L"Init My", L"Verify " + file + L" -> " + path(L"a.txt")}), object.calls);
  EXPECT_EQ(1u, desktop.executions.size());
  EXPECT_EQ(0u, desktop.saveDialogs.size());
}

TEST_F(FileOpenTest, ExecuteResultOfZeroOrAnotherTypeAsks) {
  setExecuteResult(0);
  open(create(L"a.txt.p7s"));
  WriteText(HKEY_LOCAL_MACHINE, kLegacyKey, L"ExecuteResult", L"1");
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(2u, desktop.saveDialogs.size());
  EXPECT_EQ(0u, desktop.executions.size());
}

TEST_F(FileOpenTest, ExecuteResultNeverKeepsASignedCopy) {
  setExecuteResult(1);
  open(create(L"a.txt.p7a"));
  EXPECT_EQ(2u, object.calls.size());
  EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(path(L"P7S").c_str()));
  EXPECT_EQ(1u, desktop.messages.size());
  EXPECT_EQ(1u, desktop.executions.size());
}

TEST_F(FileOpenTest, AnotherExtensionCountsAsASuccess) {
  setExecuteResult(1);
  open(create(L"a.txt.p7m"));
  EXPECT_EQ(Calls{L"Init My"}, object.calls);
  EXPECT_EQ(1u, desktop.executions.size());
  EXPECT_EQ(folder, rememberedFolder());
}

TEST_F(FileOpenTest, WithoutTheProgIdTheRunEndsInSilence) {
  user.reset();
  machine.reset();
  DeleteTree(HKEY_LOCAL_MACHINE, progIdKey());
  machine = std::make_unique<PrivateRoot>(HKEY_LOCAL_MACHINE);
  user = std::make_unique<PrivateRoot>(HKEY_CURRENT_USER);
  open(create(L"a.txt.p7s"));
  EXPECT_EQ(0, object.created);
  EXPECT_EQ(0u, desktop.messages.size());
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenTest, AFailedInitEndsTheRun) {
  setExecuteResult(1);
  for (HRESULT code : {HRESULT(0x7005), HRESULT(E_FAIL), HRESULT(S_FALSE)}) {
    object.calls.clear();
    object.answers[L"Init"] = {code};
    open(create(L"a.txt.p7s"));
    EXPECT_EQ(Calls{L"Init My"}, object.calls);
  }
  EXPECT_EQ(0u, desktop.messages.size() + desktop.executions.size());
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenTest, AnythingButZeroEndsTheRun) {
  setExecuteResult(1);
  const std::map<std::wstring, std::wstring> methods = {
      {L"p7s", L"Verify"}, {L"p7e", L"UnencryptAndShow"}, {L"p7a", L"VerifyAndUnencrypt"}};
  for (const auto& [extension, method] : methods) {
    for (uint32_t code : {1u, 0x7021u, kRemarks}) {
      object.answers[method] = {static_cast<HRESULT>(code)};
      open(create(L"a.txt." + extension));
    }
  }
  EXPECT_EQ(18u, object.calls.size());
  EXPECT_EQ(0u, desktop.messages.size() + desktop.executions.size());
  EXPECT_EQ(L"(none)", rememberedFolder());
}

}  // namespace
