// The results sheet in each of its shapes, shown by the legacy object's methods, read control by control.
#include "ui/results_sheet.h"

#include <commctrl.h>

namespace {

class ResultsSheetWindows : public ResultsSheetTest {
 protected:
  /// Looks at the sheet that a method shows, keeps a picture of it, and accepts it.
  SeenSheet sheetOf(const std::function<HRESULT()>& method, const std::string& picture = "", HRESULT result = S_OK) {
    SeenSheet seen;
    User user(kSheetCaption, [&](HWND sheet) {
      seen = LookAtSheet(sheet);
      if (!picture.empty()) TakePicture(picture);
      Press(sheet, IDOK);
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
  EXPECT_EQ(IDOK, seen.focus);
  const std::vector<Column> columns = {
      {L"Результат", 80, LVCFMT_LEFT, 0}, {L"Подписавшие", 120, LVCFMT_LEFT, 1}, {L"Время", 110, LVCFMT_LEFT, 2}};
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

TEST_F(ResultsSheetWindows, ShowTheBeginningOfALongVerdict) {
  nextText(L"Подпись сделана сертификатом, которому нет доверия, потому что его издатель неизвестен");
  engine().on("QUIVO_VerifyFile").result = static_cast<int32_t>(0xE0700019);
  const SeenSheet seen = sheetOf([&] { return verify(); }, "sheet-long-verdict", static_cast<HRESULT>(0xE0700019));
  EXPECT_EQ(0, seen.verdictFrom);
}

TEST_F(ResultsSheetWindows, EveryAnswerButOkIsARefusal) {
  using Answer = std::function<void(HWND)>;
  const std::pair<Answer, HRESULT> answers[] = {
      {[](HWND sheet) { Press(sheet, IDOK); }, S_OK},
      {[](HWND sheet) { Press(sheet, IDCANCEL); }, S_FALSE},
      {PressCloseBox, S_FALSE},
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
    User user(kSheetCaption, [](HWND sheet) { Press(sheet, IDCANCEL); });
    EXPECT_HR(S_FALSE, object->Sign(Bstr(in), Bstr(path(L"signed")), 0));
  }
  EXPECT_FALSE(exists(L"signed"));
  User user(kSheetCaption, [](HWND sheet) { Press(sheet, IDOK); });
  EXPECT_OK(object->Sign(Bstr(in), Bstr(path(L"signed")), 0));
  EXPECT_EQ("signed", contentOf(L"signed"));
}

}  // namespace
