// The file-open entry, step by step: against an object of the test's under the name that the entry asks for.
#include <functional>
#include <map>

#include "contract/legacy_test.h"

namespace {

constexpr const wchar_t* kProgId = L"PKI.pkiobj";
constexpr CLSID kDoubleId = {0x2b1f5d0a, 0x5c1e, 0x4d3a, {0x9a, 0x44, 0x1d, 0x6e, 0x20, 0x11, 0x73, 0x5c}};

/// Stands in for the legacy object: writes its calls down and answers as it is told.
class ObjectDouble final : public Ipkiobj, public IClassFactory {
 public:
  std::vector<std::wstring> calls;
  std::map<std::wstring, std::vector<HRESULT>> answers;
  std::function<void()> onRelease;
  int references = 0;
  int created = 0;

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    *out = nullptr;
    if (iid == IID_IUnknown || iid == IID_IClassFactory) *out = static_cast<IClassFactory*>(this);
    if (iid == __uuidof(Ipkiobj)) *out = static_cast<Ipkiobj*>(this);
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references); }
  STDMETHODIMP_(ULONG) Release() override {
    if (onRelease) onRelease();
    return static_cast<ULONG>(--references);
  }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** out) override {
    ++created;
    return QueryInterface(iid, out);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_FAIL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_FAIL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_FAIL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override { return E_FAIL; }

  STDMETHODIMP Init(BSTR profile) override { return answer(L"Init", profile); }
  STDMETHODIMP Uninit() override { return answer(L"Uninit"); }
  STDMETHODIMP Sign(BSTR in, BSTR out, LONG) override { return answer(L"Sign", in, out); }
  STDMETHODIMP Verify(BSTR in, BSTR out) override { return answer(L"Verify", in, out); }
  STDMETHODIMP Encrypt(BSTR in, BSTR out) override { return answer(L"Encrypt", in, out); }
  STDMETHODIMP Unencrypt(BSTR in, BSTR out, LONG show) override {
    return answer(show == 0 ? L"Unencrypt" : show == 1 ? L"UnencryptAndShow" : L"UnencryptOtherwise", in, out);
  }
  STDMETHODIMP SignAndEncrypt(BSTR in, BSTR out) override { return answer(L"SignAndEncrypt", in, out); }
  STDMETHODIMP VerifyAndUnencrypt(BSTR in, BSTR out) override { return answer(L"VerifyAndUnencrypt", in, out); }
  STDMETHODIMP SetRecipients(BSTR) override { return answer(L"SetRecipients"); }
  STDMETHODIMP IsSigned(BSTR) override { return answer(L"IsSigned"); }
  STDMETHODIMP AddRecipDERCert(BSTR) override { return answer(L"AddRecipDERCert"); }
  STDMETHODIMP FreeRecipCerts() override { return answer(L"FreeRecipCerts"); }

 private:
  HRESULT answer(const std::wstring& method, BSTR first = nullptr, BSTR second = nullptr) {
    std::wstring call = method;
    if (first != nullptr) call += L" " + std::wstring(first);
    if (second != nullptr) call += L" -> " + std::wstring(second);
    calls.push_back(call);
    auto& queue = answers[method];
    if (queue.empty()) return S_OK;
    const HRESULT next = queue.front();
    queue.erase(queue.begin());
    return next;
  }
};

class FileOpenTest : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    folder = std::wstring(temp) + L"открытие " + std::to_wstring(GetCurrentProcessId());
    CreateDirectoryW(folder.c_str(), nullptr);
    CoRegisterClassObject(kDoubleId, static_cast<IClassFactory*>(&object), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                          &cookie_);
    LPOLESTR text = nullptr;
    StringFromCLSID(kDoubleId, &text);
    writeKey(HKEY_LOCAL_MACHINE, progIdKey() + L"\\CLSID", text);
    CoTaskMemFree(text);
    machine = std::make_unique<PrivateRoot>(HKEY_LOCAL_MACHINE);
    user = std::make_unique<PrivateRoot>(HKEY_CURRENT_USER);
  }
  void TearDown() override {
    user.reset();
    machine.reset();
    deleteTree(HKEY_LOCAL_MACHINE, progIdKey());
    CoRevokeClassObject(cookie_);
    EXPECT_EQ(0, object.references);
    for (const std::wstring& file : files_) DeleteFileW(file.c_str());
    RemoveDirectoryW((folder + L"\\P7S").c_str());
    EXPECT_TRUE(RemoveDirectoryW(folder.c_str())) << "files were left behind";
    ContractTest::TearDown();
  }

  static std::wstring progIdKey() { return std::wstring(L"SOFTWARE\\Classes\\") + kProgId; }
  std::wstring path(const std::wstring& name) { return folder + L"\\" + name; }
  std::wstring create(const std::wstring& name) {
    files_.push_back(path(name));
    CloseHandle(CreateFileW(path(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    return path(name);
  }
  void open(const std::wstring& file) {
    std::string line = ansiOf(file);
    entry()(nullptr, nullptr, line.data(), SW_SHOW);
  }
  using Entry = void(CALLBACK*)(HWND, HINSTANCE, LPSTR, int);
  Entry entry() { return Module::get().entry<Entry>("FileOpen"); }

  void setExecuteResult(DWORD value) { writeDword(HKEY_LOCAL_MACHINE, kLegacyKey, L"ExecuteResult", value); }
  std::wstring rememberedFolder() {
    const RegistryTree tree = readTree(HKEY_CURRENT_USER, kLegacyKey);
    const auto found = tree.find(L":InputDirectory");
    return found == tree.end() ? L"(none)" : found->second;
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
  using Calls = std::vector<std::wstring>;

  ObjectDouble object;
  std::unique_ptr<PrivateRoot> machine;
  std::unique_ptr<PrivateRoot> user;
  LegacyDesktop desktop;
  std::wstring folder;

 private:
  std::vector<std::wstring> files_;
  DWORD cookie_ = 0;
};

UINT checkedState = BST_CHECKED;
UINT WINAPI isChecked(HWND, int id) { return id == 119 ? checkedState : 0; }

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
  open(wideOf(file.c_str()));
  DeleteFileA(file.c_str());
  EXPECT_EQ(0, object.created);
  EXPECT_EQ(0u, desktop.saveDialogs.size() + desktop.messages.size());
}

TEST_F(FileOpenTest, TheSaveDialogProposesTheResult) {
  writeText(HKEY_CURRENT_USER, kLegacyKey, L"InputDirectory", L"C:\\windows");
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

std::vector<std::string> ends;

HRESULT WINAPI enterApartment(void* reserved, DWORD model) {
  EXPECT_EQ(nullptr, reserved);
  EXPECT_EQ(static_cast<DWORD>(COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE), model);
  ends.push_back("enter");
  return CoInitializeEx(reserved, model);
}

void WINAPI leaveApartment() {
  ends.push_back("leave");
  CoUninitialize();
}

LSTATUS WINAPI closeKey(HKEY key) {
  ends.push_back("close");
  return RegCloseKey(key);
}

class FileOpenEndTest : public FileOpenTest {
 protected:
  void SetUp() override {
    FileOpenTest::SetUp();
    ends.clear();
  }

 private:
  ImportPatch entering_{Module::get().handle(), "CoInitializeEx", reinterpret_cast<void*>(enterApartment)};
  ImportPatch leaving_{Module::get().handle(), "CoUninitialize", reinterpret_cast<void*>(leaveApartment)};
};

TEST_F(FileOpenEndTest, TheApartmentIsLeftAfterEveryRun) {
  open(path(L"missing.p7s"));
  EXPECT_EQ((std::vector<std::string>{"enter", "leave"}), ends);
  open(create(L"a.txt.p7s"));
  EXPECT_EQ((std::vector<std::string>{"enter", "leave", "enter", "leave"}), ends);
}

TEST_F(FileOpenEndTest, KeysAreClosedBeforeTheObjectIsReleased) {
  const std::wstring file = create(L"a.txt.p7s");
  const ImportPatch closing(Module::get().handle(), "RegCloseKey", reinterpret_cast<void*>(closeKey));
  object.onRelease = [] { ends.push_back("release"); };
  open(file);
  object.onRelease = nullptr;
  ASSERT_GE(ends.size(), 3u);
  EXPECT_EQ((std::vector<std::string>{"close", "release", "leave"}),
            (std::vector<std::string>(ends.end() - 3, ends.end())));
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
  writeText(HKEY_LOCAL_MACHINE, kLegacyKey, L"ExecuteResult", L"1");
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
  deleteTree(HKEY_LOCAL_MACHINE, progIdKey());
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

class FileOpenKeepTest : public FileOpenTest {
 protected:
  void SetUp() override {
    FileOpenTest::SetUp();
    checkedState = BST_CHECKED;
    keepSignedCopy();
  }
  std::wstring kept() { return path(L"P7S\\a.txt.p7s"); }
  ImportPatch check_{Module::get().handle(), "IsDlgButtonChecked", reinterpret_cast<void*>(isChecked)};
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

TEST_F(FileOpenKeepTest, AFailedCopyIsToldAndEndsTheRun) {
  object.answers[L"Unencrypt"] = {0x7035};
  open(create(L"a.txt.p7a"));
  const ShownMessage message = desktop.onlyMessage();
  EXPECT_EQ(L"Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл " + path(L"a.txt") +
                L".\nПри сохранении подписанного файла произошла ошибка.",
            message.text);
  EXPECT_EQ(static_cast<UINT>(MB_ICONWARNING), message.style);
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenKeepTest, AFolderThatCannotBeMadeIsToldAndTheResultStays) {
  desktop.saveAnswer = [answer = desktop.saveAnswer](OPENFILENAMEA& dialog) {
    lstrcpyA(dialog.lpstrFile, "Q:\\missing\\a.txt");
    return answer(dialog);
  };
  open(create(L"a.txt.p7a"));
  const ShownMessage message = desktop.onlyMessage();
  EXPECT_EQ(L"Ошибка создания директории Q:\\missing\\P7S для сохранения подписанного файла.", message.text);
  EXPECT_EQ(static_cast<UINT>(MB_ICONERROR), message.style);
  EXPECT_EQ(2u, object.calls.size());
  EXPECT_EQ(L"Q:\\missing", rememberedFolder());
}

TEST_F(FileOpenKeepTest, AFileInThePlaceOfTheFolderIsToldToo) {
  create(L"P7S");
  open(create(L"a.txt.p7a"));
  EXPECT_EQ(L"Ошибка создания директории " + path(L"P7S") + L" для сохранения подписанного файла.",
            desktop.onlyMessage().text);
  EXPECT_EQ(2u, object.calls.size());
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
