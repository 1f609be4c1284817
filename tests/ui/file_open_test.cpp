// The file-open entry with its real windows: the save dialog with and without its panel, the questions, the outcomes.
#include <windows.h>

#include <dlgs.h>

#include "ui/ui_test.h"

namespace {

constexpr const wchar_t* kOpenCaption = L"Криптографическое расширение";
constexpr const wchar_t* kClasses = L"SOFTWARE\\Classes\\";
constexpr int kKeepSigned = 119;

/// The save dialog has a name of the platform's; it is known by the field of the file name in it.
bool IsSaveDialog(HWND window) { return GetDlgItem(window, cmb1) != nullptr && GetDlgItem(window, IDOK) != nullptr; }

/// Descendants of a window with a number, in depth.
HWND Descendant(HWND window, int id) {
  for (const SeenControl& control : Look(window).controls)
    if (control.id == id) return control.window;
  return nullptr;
}

/// What the user sees of the save dialog.
struct SeenDialog {
  SeenWindow window;
  std::wstring fileName;
  std::wstring filter;
  RECT expectedPlace{};
};

SeenDialog LookAtDialog(HWND dialog) {
  SeenDialog seen;
  seen.window = Look(dialog);
  for (const SeenControl& control : seen.window.controls) {
    if (control.id == cmb13 && control.kind == L"ComboBoxEx32") seen.fileName = control.text;
    if (control.id == cmb1) seen.filter = control.text;
    if (control.id == kKeepSigned) {
      seen.expectedPlace = {6, 1, 100, 8};
      MapDialogRect(GetParent(control.window), &seen.expectedPlace);
    }
  }
  return seen;
}

class FileOpenWindows : public UiTest {
 protected:
  // Before the tests' own machine key stands in for the real one.
  static void SetUpTestSuite() {
    WriteKey(HKEY_LOCAL_MACHINE, std::wstring(kClasses) + L"PKI.pkiobj\\CLSID",
             L"{D107033F-3A53-4406-AF19-13543470DDB2}");
    WriteKey(HKEY_LOCAL_MACHINE, std::wstring(kClasses) + L".tavlui", L"tavl.ui");
    WriteKey(HKEY_LOCAL_MACHINE, std::wstring(kClasses) + L"tavl.ui\\shell\\open\\command",
             L"cmd.exe /c copy \"%1\" \"%1.opened\"");
  }
  static void TearDownTestSuite() {
    for (const wchar_t* key : {L"PKI.pkiobj", L".tavlui", L"tavl.ui"})
      DeleteTree(HKEY_LOCAL_MACHINE, std::wstring(kClasses) + key);
  }
  void SetUp() override {
    UiTest::SetUp();
    // The save dialog remembers the folders that it has shown.
    leaveOutComMemory();
    letWrite("QUIVO_VerifyFile", 4, "verified");
    letWrite("QUIVO_DecryptFile", 3, "decrypted");
    letWrite("QUIVO_DecryptAndVerifyFile", 4, "both");
    engine().on("QUIVO_GetErrorText").text = "text";
  }
  void TearDown() override {
    // The entry leaves its session to the end of its process.
    object->Uninit();
    engine().reset();
    UiTest::TearDown();
  }

  void open(const std::wstring& file) {
    using Entry = void(CALLBACK*)(HWND, HINSTANCE, LPSTR, int);
    std::string line = AnsiOf(file);
    Module::get().entry<Entry>("FileOpen")(nullptr, nullptr, line.data(), SW_SHOW);
  }
  User accept(const wchar_t* caption) {
    return User(caption, [](HWND window) { Press(window, IDOK); });
  }
  User atDialog(std::function<void(HWND)> act) { return User(L"save dialog", IsSaveDialog, std::move(act)); }
  User pressAtDialog(int button) {
    return atDialog([button](HWND dialog) { Press(dialog, button); });
  }
  User pressAtDialogMarked(bool marked) {
    return atDialog([marked](HWND dialog) {
      SetMark(Descendant(dialog, kKeepSigned), marked);
      Press(dialog, IDOK);
    });
  }
  void setExecuteResult() { WriteDword(HKEY_LOCAL_MACHINE, kLegacyKey, L"ExecuteResult", 1); }
  std::wstring rememberedFolder() {
    const RegistryTree tree = ReadTree(HKEY_CURRENT_USER, kLegacyKey);
    const auto found = tree.find(L":InputDirectory");
    return found == tree.end() ? L"(none)" : found->second;
  }

  PrivateRoot user{HKEY_CURRENT_USER};
};

TEST_F(FileOpenWindows, TheSaveDialogProposesTheResult) {
  const std::wstring file = create(L"Отчёт за год.doc.p7s");
  SeenDialog seen;
  {
    User sheet = accept(kSheetCaption);
    User dialog = atDialog([&](HWND window) {
      seen = LookAtDialog(window);
      TakePicture("save-dialog");
      Press(window, IDOK);
    });
    open(file);
  }
  EXPECT_EQ(L"Отчёт за год.doc", seen.fileName);
  EXPECT_EQ(L"Все файлы (*.*)", seen.filter);
  EXPECT_FALSE(seen.window.has(kKeepSigned));
  EXPECT_FALSE(seen.window.has(chx1) && seen.window.control(chx1).visible) << "the read-only box";
  EXPECT_EQ("verified", contentOf(L"Отчёт за год.doc"));
  EXPECT_EQ(folder, rememberedFolder());
}

TEST_F(FileOpenWindows, TheSaveDialogCarriesThePanelForASignedAndEncryptedFile) {
  const std::wstring file = create(L"Письмо.txt.P7A");
  SeenDialog seen;
  SeenWindow box;
  {
    User outcome(kOpenCaption, LookAndPress(box, IDOK));
    User sheet = accept(kSheetCaption);
    User dialog = atDialog([&](HWND window) {
      seen = LookAtDialog(window);
      TakePicture("save-dialog-panel");
      Press(window, IDOK);
    });
    open(file);
  }
  const SeenControl option = seen.window.control(kKeepSigned);
  EXPECT_EQ(L"Сохранить файл с ЭП", option.text);
  EXPECT_TRUE(option.visible);
  EXPECT_TRUE(option.enabled);
  EXPECT_EQ(static_cast<DWORD>(BS_AUTOCHECKBOX), option.style & BS_TYPEMASK);
  EXPECT_EQ(seen.expectedPlace.left, option.place.left);
  // The dialog puts the panel below its own controls.
  EXPECT_GT(option.place.top, seen.window.control(cmb1).place.bottom);
  EXPECT_EQ(seen.expectedPlace.right, option.place.right - option.place.left);
  EXPECT_EQ(seen.expectedPlace.bottom, option.place.bottom - option.place.top);
  EXPECT_EQ(L"Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл " + path(L"Письмо.txt") + L".",
            TextOfMessage(box));
  EXPECT_EQ(std::vector<int>{IDOK}, box.visible(L"Button"));
  EXPECT_EQ("both", contentOf(L"Письмо.txt"));
  EXPECT_FALSE(exists(L"P7S"));
}

TEST_F(FileOpenWindows, ACancelledSaveDialogWritesNothing) {
  const std::wstring file = create(L"a.txt.p7a");
  for (const auto& refusal : {std::function<void(HWND)>([](HWND window) { Press(window, IDCANCEL); }),
                              std::function<void(HWND)>(PressCloseBox)}) {
    User dialog = atDialog(refusal);
    open(file);
  }
  EXPECT_FALSE(exists(L"a.txt"));
  EXPECT_EQ(0u, engine().count("QUIVO_Initialize"));
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenWindows, TheUserChoosesAnotherName) {
  const std::wstring file = create(L"a.txt.p7e");
  User sheet = accept(kSheetCaption);
  User dialog = atDialog([&](HWND window) {
    TypeText(Descendant(window, cmb13), path(L"другое имя.txt"));
    Press(window, IDOK);
  });
  open(file);
  EXPECT_EQ("decrypted", contentOf(L"другое имя.txt"));
  EXPECT_FALSE(exists(L"a.txt"));
}

TEST_F(FileOpenWindows, TheSaveDialogAsksBeforeItOverwrites) {
  create(L"a.txt", "old");
  const std::wstring file = create(L"a.txt.p7e");
  auto isQuestion = [](HWND window) { return GetDlgItem(window, IDYES) != nullptr; };
  {
    User question(L"overwrite question", isQuestion, [](HWND window) { Press(window, IDNO); });
    User dialog = atDialog([&](HWND window) {
      Press(window, IDOK);
      // The dialog stays; the user gives up once the question is gone.
      Sleep(1500);
      Press(window, IDCANCEL);
    });
    open(file);
  }
  EXPECT_EQ("old", contentOf(L"a.txt"));
  User sheet = accept(kSheetCaption);
  User question(L"overwrite question", isQuestion, [](HWND window) { Press(window, IDYES); });
  User dialog = pressAtDialog(IDOK);
  open(file);
  EXPECT_EQ("decrypted", contentOf(L"a.txt"));
}

TEST_F(FileOpenWindows, ARefusedSheetEndsTheRun) {
  const std::wstring file = create(L"a.txt.p7a");
  User sheet(kSheetCaption, [](HWND window) { Press(window, IDCANCEL); });
  User dialog = pressAtDialogMarked(true);
  open(file);
  EXPECT_FALSE(exists(L"P7S"));
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenWindows, TheSignedCopyIsKeptWhenMarked) {
  const std::wstring file = create(L"a.txt.p7a");
  SeenWindow box;
  {
    User outcome(kOpenCaption, [&](HWND window) {
      box = Look(window);
      TakePicture("outcome");
      Press(window, IDOK);
    });
    User sheet = accept(kSheetCaption);
    User dialog = pressAtDialogMarked(true);
    open(file);
  }
  EXPECT_EQ(L"Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл " + path(L"a.txt") +
                L".\nПодписанный файл сохранен в файл " + path(L"P7S\\a.txt.p7s") + L".",
            TextOfMessage(box));
  EXPECT_EQ("both", contentOf(L"a.txt"));
  EXPECT_EQ("decrypted", contentOf(L"P7S\\a.txt.p7s"));
}

TEST_F(FileOpenWindows, AMarkThatIsTakenBackKeepsNothing) {
  const std::wstring file = create(L"a.txt.p7a");
  User outcome = accept(kOpenCaption);
  User sheet = accept(kSheetCaption);
  User dialog = atDialog([](HWND window) {
    const HWND option = Descendant(window, kKeepSigned);
    SetMark(option, true);
    SetMark(option, false);
    Press(window, IDOK);
  });
  open(file);
  EXPECT_FALSE(exists(L"P7S"));
  EXPECT_EQ("both", contentOf(L"a.txt"));
}

TEST_F(FileOpenWindows, AFailedCopyIsAWarning) {
  const std::wstring file = create(L"a.txt.p7a");
  engine().on("QUIVO_DecryptFile").result = 0x7035;
  SeenWindow box;
  {
    User outcome(kOpenCaption, LookAndPress(box, IDOK));
    User sheet = accept(kSheetCaption);
    User dialog = pressAtDialogMarked(true);
    open(file);
  }
  EXPECT_EQ(L"Расшифрование и проверка ЭП выполнены.\nРезультат сохранён в файл " + path(L"a.txt") +
                L".\nПри сохранении подписанного файла произошла ошибка.",
            TextOfMessage(box));
  EXPECT_EQ(L"(none)", rememberedFolder());
}

TEST_F(FileOpenWindows, AFolderThatCannotBeMadeIsAnError) {
  create(L"P7S");
  const std::wstring file = create(L"a.txt.p7a");
  SeenWindow box;
  {
    User outcome(kOpenCaption, LookAndPress(box, IDOK));
    User sheet = accept(kSheetCaption);
    User dialog = pressAtDialogMarked(true);
    open(file);
  }
  EXPECT_EQ(L"Ошибка создания директории " + path(L"P7S") + L" для сохранения подписанного файла.", TextOfMessage(box));
  EXPECT_EQ("both", contentOf(L"a.txt"));
}

TEST_F(FileOpenWindows, ExecuteResultAsksAndNoWritesNothing) {
  setExecuteResult();
  create(L"a.tavlui", "old");
  const std::wstring file = create(L"a.tavlui.p7s");
  SeenWindow box;
  {
    User question(kOpenCaption, [&](HWND window) {
      box = Look(window);
      TakePicture("overwrite-question");
      Press(window, IDNO);
    });
    open(file);
  }
  EXPECT_EQ(L"Файл " + path(L"a.tavlui") + L" уже существует. Перезаписать?", TextOfMessage(box));
  EXPECT_EQ((std::vector<int>{IDYES, IDNO}), box.visible(L"Button"));
  EXPECT_EQ("old", contentOf(L"a.tavlui"));
  EXPECT_FALSE(exists(L"a.tavlui.opened"));
}

TEST_F(FileOpenWindows, ExecuteResultOverwritesAndOpensTheResult) {
  setExecuteResult();
  create(L"a.tavlui", "old");
  const std::wstring file = create(L"a.tavlui.p7s");
  {
    User sheet = accept(kSheetCaption);
    User question(kOpenCaption, [](HWND window) { Press(window, IDYES); });
    open(file);
  }
  EXPECT_EQ("verified", contentOf(L"a.tavlui"));
  // The program of the result's kind is a process of its own.
  for (int i = 0; i < 100 && contentOf(L"a.tavlui.opened") != "verified"; ++i) Sleep(100);
  EXPECT_EQ("verified", contentOf(L"a.tavlui.opened"));
}

}  // namespace
