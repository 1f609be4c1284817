// The results sheet in each of its shapes, shown by the legacy object's methods, read control by control.
#include <windows.h>

#include <commctrl.h>
#include <prsht.h>

#include "ui/ui_test.h"

namespace {

struct Placed {
  int id;
  int x, y, width, height;
};

// In dialog units.
constexpr Placed kControls[] = {
    {1023, 7, 7, 20, 20},     {1024, 45, 10, 170, 17}, {1029, 7, 32, 241, 1},    {1025, 7, 39, 94, 9},
    {1005, 103, 39, 145, 12}, {1021, 7, 51, 20, 20},   {1026, 36, 52, 46, 8},    {1006, 103, 52, 145, 19},
    {1003, 159, 74, 89, 14},  {1028, 7, 94, 241, 1},   {1027, 7, 102, 94, 9},    {1007, 103, 102, 145, 12},
    {1022, 7, 118, 20, 20},   {201, 37, 118, 211, 90}, {1004, 159, 214, 89, 14},
};
constexpr int kDecryptionControls[] = {1025, 1005, 1021, 1026, 1006, 1003};
constexpr int kVerificationControls[] = {1027, 1007, 1022, 201, 1004, 1028};

struct Column {
  std::wstring heading;
  int width;
  int format;
  bool operator==(const Column&) const = default;
};

/// The list of signers.
struct SeenList {
  std::vector<Column> columns;
  std::vector<std::vector<std::wstring>> rows;
  std::vector<int> images;
  DWORD extendedStyle = 0;
  int imageCount = 0;
  SIZE imageSize{};
};

SeenList lookAtList(HWND list) {
  SeenList seen;
  wchar_t text[1024];
  for (int i = 0;; ++i) {
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
    column.pszText = text;
    column.cchTextMax = 1024;
    if (!SendMessageW(list, LVM_GETCOLUMNW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column))) break;
    seen.columns.push_back({text, column.cx, column.fmt & LVCFMT_JUSTIFYMASK});
  }
  const int rows = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < rows; ++row) {
    seen.rows.emplace_back();
    for (int column = 0; column < static_cast<int>(seen.columns.size()); ++column) {
      LVITEMW item{};
      item.mask = LVIF_TEXT | LVIF_IMAGE;
      item.iItem = row;
      item.iSubItem = column;
      item.pszText = text;
      item.cchTextMax = 1024;
      SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
      seen.rows.back().push_back(item.pszText);
      if (column == 0) seen.images.push_back(item.iImage);
    }
  }
  seen.extendedStyle = static_cast<DWORD>(SendMessageW(list, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
  const auto images = reinterpret_cast<HIMAGELIST>(SendMessageW(list, LVM_GETIMAGELIST, LVSIL_SMALL, 0));
  if (images != nullptr) {
    seen.imageCount = ImageList_GetImageCount(images);
    int width = 0, height = 0;
    ImageList_GetIconSize(images, &width, &height);
    seen.imageSize = {width, height};
  }
  return seen;
}

/// What a user sees of a sheet before the answer.
struct SeenSheet {
  SeenWindow window;
  SeenList list;
  std::vector<RECT> expectedPlaces;
  HICON header = nullptr, decryption = nullptr, verification = nullptr;
  std::wstring tab;
};

HICON iconOf(HWND page, int control) {
  return reinterpret_cast<HICON>(SendDlgItemMessageW(page, control, STM_GETICON, 0, 0));
}

SeenSheet lookAtSheet(HWND sheet) {
  SeenSheet seen;
  seen.window = look(sheet);
  const auto page = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
  seen.list = lookAtList(GetDlgItem(page, 201));
  for (const Placed& control : kControls) {
    // Each number is turned into pixels by itself, as the dialog manager does.
    RECT place{control.x, control.y, control.width, control.height};
    MapDialogRect(page, &place);
    seen.expectedPlaces.push_back(place);
  }
  seen.header = iconOf(page, 1023);
  seen.decryption = iconOf(page, 1021);
  seen.verification = iconOf(page, 1022);
  wchar_t text[100] = {};
  TCITEMW tab{};
  tab.mask = TCIF_TEXT;
  tab.pszText = text;
  tab.cchTextMax = 100;
  const auto tabs = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETTABCONTROL, 0, 0));
  SendMessageW(tabs, TCM_GETITEMW, 0, reinterpret_cast<LPARAM>(&tab));
  seen.tab = text;
  return seen;
}

fake::Certificate CertificateOf(const std::wstring& subject, uint8_t mark) {
  fake::Certificate certificate;
  certificate.fields = 0x10204;
  certificate.subject = AnsiOf(subject);
  certificate.certEncoded = {0x30, 0x01, mark};
  return certificate;
}

class ResultsSheetWindows : public UiTest {
 protected:
  void SetUp() override {
    UiTest::SetUp();
    engine().on("QUIVO_GetErrorText").text = AnsiOf(L"Операция выполнена успешно.");
    in = create(L"Договор № 7.txt.p7a");
    letWrite("QUIVO_VerifyFile", 4, "verified");
    letWrite("QUIVO_DecryptFile", 3, "decrypted");
    letWrite("QUIVO_DecryptAndVerifyFile", 4, "both");
  }
  /// The engine's texts are asked for in the order of filling: each answer stands for one question.
  void nextText(const std::wstring& text) { engine().once("QUIVO_GetErrorText").text = AnsiOf(text); }

  void addSigner(const char* function, int32_t status, uint32_t time, const std::wstring& subject, uint8_t mark = 1) {
    fake::Signature signature;
    signature.status = status;
    signature.time = time;
    signature.cert = CertificateOf(subject, mark);
    engine().on(function).signatures.push_back(signature);
  }
  HRESULT verify() { return object->Verify(Bstr(in), Bstr(path(L"result"))); }
  HRESULT unencrypt() { return object->Unencrypt(Bstr(in), Bstr(path(L"result")), 1); }
  HRESULT verifyAndUnencrypt() { return object->VerifyAndUnencrypt(Bstr(in), Bstr(path(L"result"))); }

  /// Looks at the sheet that a method shows, keeps a picture of it, and accepts it.
  SeenSheet sheetOf(const std::function<HRESULT()>& method, const std::string& picture = "", HRESULT result = S_OK) {
    SeenSheet seen;
    User user(kSheetCaption, [&](HWND sheet) {
      seen = lookAtSheet(sheet);
      if (!picture.empty()) takePicture(picture);
      press(sheet, IDOK);
    });
    EXPECT_HR(result, method());
    return seen;
  }
  HICON icon(int number) { return LoadIconW(Module::get().handle(), MAKEINTRESOURCEW(number)); }
  std::wstring timeOf(uint32_t day, WORD hour, WORD minute) {
    const SYSTEMTIME moment{2023, 11, 0, static_cast<WORD>(day), hour, minute, 20, 0};
    char date[100], clock[100];
    GetDateFormatA(LOCALE_USER_DEFAULT, DATE_LONGDATE, &moment, nullptr, date, 100);
    GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &moment, nullptr, clock, 100);
    return WideOf(std::string(date) + "  " + clock);
  }

  void expectPlaces(const SeenSheet& seen) {
    for (size_t i = 0; i < std::size(kControls); ++i) {
      const SeenControl control = seen.window.control(kControls[i].id);
      const RECT& expected = seen.expectedPlaces[i];
      EXPECT_EQ(expected.left, control.place.left) << control.id;
      EXPECT_EQ(expected.top, control.place.top) << control.id;
      const LONG width = control.place.right - control.place.left, height = control.place.bottom - control.place.top;
      const DWORD kind = control.kind == L"Static" ? control.style & SS_TYPEMASK : 0;
      // A static that shows an icon takes the size of its icon; one that is a line has its edges outside.
      EXPECT_EQ(kind == SS_ICON ? 32 : expected.right, width - (kind == SS_ETCHEDHORZ ? 2 : 0)) << control.id;
      EXPECT_EQ(kind == SS_ICON ? 32 : expected.bottom, height) << control.id;
    }
  }
  template <size_t count>
  void expectVisible(const SeenSheet& seen, const int (&ids)[count], bool visible) {
    for (int id : ids) EXPECT_EQ(visible, seen.window.control(id).visible) << id;
  }
  void expectFixedTexts(const SeenSheet& seen) {
    EXPECT_EQ(kSheetCaption, seen.window.caption);
    EXPECT_EQ(L"Информация", seen.tab);
    EXPECT_EQ(L"Сведения о защищенном сообщении", seen.window.control(1024).text);
    EXPECT_EQ(L"Результат расшифрования:", seen.window.control(1025).text);
    EXPECT_EQ(L"Зашифровал:", seen.window.control(1026).text);
    EXPECT_EQ(L"Показать сертификат...", seen.window.control(1003).text);
    EXPECT_EQ(L"Результат проверки ЭП:", seen.window.control(1027).text);
    EXPECT_EQ(L"Показать сертификат...", seen.window.control(1004).text);
    for (int id : {1023, 1024, 1029}) EXPECT_TRUE(seen.window.control(id).visible) << id;
    EXPECT_TRUE(seen.window.control(IDOK).visible);
    EXPECT_TRUE(seen.window.control(IDCANCEL).visible);
    // The number of the button that applies.
    EXPECT_FALSE(seen.window.has(0x3021) && seen.window.control(0x3021).visible);
    EXPECT_EQ(icon(1108), seen.verification);
  }

  std::wstring in;
};

TEST_F(ResultsSheetWindows, OfAVerification) {
  nextText(L"Подпись верна");
  nextText(L"Действительна");
  addSigner("QUIVO_VerifyFile", 0, 1700000000, L"CN=Анна Петрова, O=ООО Пример, C=RU");
  const SeenSheet seen = sheetOf([&] { return verify(); }, "sheet-verification");
  expectFixedTexts(seen);
  expectPlaces(seen);
  expectVisible(seen, kDecryptionControls, false);
  expectVisible(seen, kVerificationControls, true);
  EXPECT_EQ(L"Подпись верна", seen.window.control(1007).text);
  EXPECT_EQ(icon(1101), seen.header);
  const std::vector<Column> columns = {
      {L"Результат", 80, LVCFMT_LEFT}, {L"Подписавшие", 120, LVCFMT_LEFT}, {L"Время", 110, LVCFMT_LEFT}};
  EXPECT_EQ(columns, seen.list.columns);
  EXPECT_EQ(0x4020u, seen.list.extendedStyle);
  EXPECT_EQ(1, seen.list.imageCount);
  EXPECT_EQ(16, seen.list.imageSize.cx);
  EXPECT_EQ(16, seen.list.imageSize.cy);
  ASSERT_EQ(1u, seen.list.rows.size());
  EXPECT_EQ((std::vector<std::wstring>{L"Действительна", L"Анна Петрова, ООО Пример", timeOf(14, 22, 13)}),
            seen.list.rows[0]);
  EXPECT_EQ(std::vector<int>{0}, seen.list.images);
  EXPECT_EQ("verified", contentOf(L"result"));
}

TEST_F(ResultsSheetWindows, OfADecryption) {
  nextText(L"Расшифровано");
  engine().on("QUIVO_DecryptFile").certificate = CertificateOf(L"CN=Борис Волков,O=ООО Пример", 7);
  const SeenSheet seen = sheetOf([&] { return unencrypt(); }, "sheet-decryption");
  expectFixedTexts(seen);
  expectPlaces(seen);
  expectVisible(seen, kDecryptionControls, true);
  expectVisible(seen, kVerificationControls, false);
  EXPECT_EQ(L"Расшифровано", seen.window.control(1005).text);
  EXPECT_EQ(L"Борис Волков, ООО Пример", seen.window.control(1006).text);
  EXPECT_EQ(icon(1110), seen.decryption);
  EXPECT_EQ(icon(1101), seen.header);
  EXPECT_EQ(0u, seen.list.rows.size());
  EXPECT_EQ("decrypted", contentOf(L"result"));
}

TEST_F(ResultsSheetWindows, OfAFailedDecryption) {
  nextText(L"Ключ не подходит");
  engine().on("QUIVO_DecryptFile").result = 0x7035;
  engine().on("QUIVO_DecryptFile").status = 0x7036;
  const SeenSheet seen = sheetOf([&] { return unencrypt(); }, "sheet-failed-decryption", 0x7035);
  EXPECT_EQ(L"Ключ не подходит", seen.window.control(1005).text);
  EXPECT_EQ(icon(1109), seen.decryption);
  EXPECT_EQ(icon(1103), seen.header);
  for (int id : {1006, 1026, 1003}) EXPECT_FALSE(seen.window.control(id).visible) << id;
  for (int id : {1025, 1005, 1021}) EXPECT_TRUE(seen.window.control(id).visible) << id;
}

TEST_F(ResultsSheetWindows, OfBoth) {
  nextText(L"Расшифровано");
  nextText(L"Подписи верны");
  nextText(L"Действительна");
  nextText(L"Действительна");
  engine().on("QUIVO_DecryptAndVerifyFile").certificate = CertificateOf(L"O=Отправитель", 7);
  addSigner("QUIVO_DecryptAndVerifyFile", 0, 1700000000, L"CN=Анна Петрова");
  addSigner("QUIVO_DecryptAndVerifyFile", 0, 1700086400, L"CN=Борис Волков");
  const SeenSheet seen = sheetOf([&] { return verifyAndUnencrypt(); }, "sheet-both");
  expectFixedTexts(seen);
  expectPlaces(seen);
  expectVisible(seen, kDecryptionControls, true);
  expectVisible(seen, kVerificationControls, true);
  EXPECT_EQ(L"Расшифровано", seen.window.control(1005).text);
  EXPECT_EQ(L"Отправитель", seen.window.control(1006).text);
  EXPECT_EQ(L"Подписи верны", seen.window.control(1007).text);
  ASSERT_EQ(2u, seen.list.rows.size());
  EXPECT_EQ(L"Анна Петрова", seen.list.rows[0][1]);
  EXPECT_EQ(L"Борис Волков", seen.list.rows[1][1]);
  EXPECT_EQ(timeOf(15, 22, 13), seen.list.rows[1][2]);
  EXPECT_EQ((std::vector<int>{0, 0}), seen.list.images);
  EXPECT_EQ("both", contentOf(L"result"));
}

TEST_F(ResultsSheetWindows, OfAFailedSigner) {
  nextText(L"Проверка выполнена с замечаниями");
  nextText(L"Сертификат отозван");
  nextText(L"Действительна");
  engine().on("QUIVO_VerifyFile").result = static_cast<int32_t>(0xE0700019);
  addSigner("QUIVO_VerifyFile", 0x7026, 1700000000, L"CN=Вера Смирнова");
  addSigner("QUIVO_VerifyFile", 0, 1700000000, L"CN=Анна Петрова");
  const SeenSheet seen = sheetOf([&] { return verify(); }, "sheet-failed-signer", static_cast<HRESULT>(0xE0700019));
  EXPECT_EQ(L"Проверка выполнена с замечаниями", seen.window.control(1007).text);
  EXPECT_EQ(icon(1102), seen.header);
  ASSERT_EQ(2u, seen.list.rows.size());
  EXPECT_EQ(L"Сертификат отозван", seen.list.rows[0][0]);
  EXPECT_EQ(L"Действительна", seen.list.rows[1][0]);
  // The icon of failing rows does not exist.
  EXPECT_EQ((std::vector<int>{-1, 0}), seen.list.images);
  EXPECT_EQ(1, seen.list.imageCount);
}

TEST_F(ResultsSheetWindows, EveryAnswerButOkIsARefusal) {
  using Answer = std::function<void(HWND)>;
  const std::pair<Answer, HRESULT> answers[] = {
      {[](HWND sheet) { press(sheet, IDOK); }, S_OK},
      {[](HWND sheet) { press(sheet, IDCANCEL); }, S_FALSE},
      {pressCloseBox, S_FALSE},
  };
  addSigner("QUIVO_VerifyFile", 0, 1, L"CN=A");
  for (const auto& [answer, result] : answers) {
    for (const auto& method : {std::function<HRESULT()>([&] { return verify(); }), {[&] { return unencrypt(); }}, {[&] {
                                 return verifyAndUnencrypt();
                               }}}) {
      User user(kSheetCaption, answer);
      EXPECT_HR(result, method());
    }
  }
}

TEST_F(ResultsSheetWindows, ARefusedSignatureIsNotAddedTo) {
  letWrite("QUIVO_SignFile", 4, "signed");
  {
    User user(kSheetCaption, [](HWND sheet) { press(sheet, IDCANCEL); });
    EXPECT_HR(S_FALSE, object->Sign(Bstr(in), Bstr(path(L"signed")), 0));
  }
  EXPECT_FALSE(exists(L"signed"));
  User user(kSheetCaption, [](HWND sheet) { press(sheet, IDOK); });
  EXPECT_OK(object->Sign(Bstr(in), Bstr(path(L"signed")), 0));
  EXPECT_EQ("signed", contentOf(L"signed"));
}

class CertificateButtons : public ResultsSheetWindows {
 protected:
  HWND pageOf(HWND sheet) { return reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0)); }
  void click(HWND sheet, int button) { SendMessageW(GetDlgItem(pageOf(sheet), button), BM_CLICK, 0, 0); }
  void select(HWND sheet, int row) {
    LVITEMW item{};
    item.stateMask = LVIS_SELECTED;
    item.state = LVIS_SELECTED;
    SendMessageW(GetDlgItem(pageOf(sheet), 201), LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                 reinterpret_cast<LPARAM>(&item));
  }
  /// The certificates that were shown, by the last byte of each.
  std::vector<int> shown() {
    std::vector<int> marks;
    for (const fake::Call& call : engine().calls())
      if (call.function == "QUIVO_ShowCertificate") marks.push_back(call.blobBytes(1).back());
    return marks;
  }
};

TEST_F(CertificateButtons, ShowTheEncrypter) {
  engine().on("QUIVO_DecryptFile").certificate = CertificateOf(L"CN=B", 7);
  User user(kSheetCaption, [&](HWND sheet) {
    click(sheet, 1003);
    press(sheet, IDOK);
  });
  EXPECT_OK(unencrypt());
  EXPECT_EQ(std::vector<int>{7}, shown());
}

TEST_F(CertificateButtons, ShowTheSelectedSigner) {
  for (uint8_t mark : {1, 2, 3}) addSigner("QUIVO_VerifyFile", 0, 1, L"CN=A", mark);
  User user(kSheetCaption, [&](HWND sheet) {
    click(sheet, 1004);
    select(sheet, 2);
    click(sheet, 1004);
    select(sheet, 0);
    click(sheet, 1004);
    press(sheet, IDOK);
  });
  EXPECT_OK(verify());
  EXPECT_EQ((std::vector<int>{3, 1}), shown());
}

TEST_F(CertificateButtons, ShowTheOnlySignerWithoutASelection) {
  addSigner("QUIVO_VerifyFile", 0, 1, L"CN=A", 5);
  User user(kSheetCaption, [&](HWND sheet) {
    click(sheet, 1004);
    press(sheet, IDOK);
  });
  EXPECT_OK(verify());
  EXPECT_EQ(std::vector<int>{5}, shown());
}

TEST_F(CertificateButtons, ShowNothingForASignerWithoutACertificate) {
  engine().on("QUIVO_VerifyFile").signatures.resize(1);
  User user(kSheetCaption, [&](HWND sheet) {
    click(sheet, 1004);
    press(sheet, IDOK);
  });
  EXPECT_OK(verify());
  EXPECT_EQ(std::vector<int>{}, shown());
}

TEST_F(CertificateButtons, ShowNothingForARecordThatCannotBeRead) {
  addSigner("QUIVO_VerifyFile", 0, 1, L"CN=A", 5);
  User user(kSheetCaption, [&](HWND sheet) {
    // The pointer to the signer's record, in the first entry of the result.
    const uint64_t entries = *reinterpret_cast<uint64_t*>(engine().only("QUIVO_VerifyFile").value(5) + 8);
    void*& record = *reinterpret_cast<void**>(entries + 8);
    void* const readable = std::exchange(record, reinterpret_cast<void*>(8));
    click(sheet, 1004);
    record = readable;
    press(sheet, IDOK);
  });
  EXPECT_OK(verify());
  EXPECT_EQ(std::vector<int>{}, shown());
}

}  // namespace
