// The message boxes of the legacy object, shown by its methods and answered by a user.
#include <functional>

#include "ui/ui_test.h"

namespace {

class LegacyMessageWindows : public UiTest {
 protected:
  void SetUp() override {
    UiTest::SetUp();
    engine().on("QUIVO_GetErrorText").text = AnsiOf(L"Причина отказа.");
    engine().on("QUIVO_SignedInfoFile").result = 1;
  }

  /// One method, its message and what it returns; once answered with OK, once with the close box.
  void expectMessage(const std::wstring& text, uint32_t result, const std::function<HRESULT()>& method) {
    SeenWindow box;
    {
      User user(kSheetCaption, LookAndPress(box, IDOK));
      EXPECT_HR(result, method());
    }
    EXPECT_EQ(text, TextOfMessage(box));
    EXPECT_EQ(std::vector<int>{IDOK}, box.visible(L"Button"));
    bool hasIcon = false;
    for (const SeenControl& control : box.controls)
      hasIcon = hasIcon || (control.kind == L"Static" && (control.style & SS_TYPEMASK) == SS_ICON && control.visible);
    EXPECT_TRUE(hasIcon);
    User user(kSheetCaption, PressCloseBox);
    EXPECT_HR(result, method());
  }
};

TEST_F(LegacyMessageWindows, InitShowsItsFailure) {
  Ptr<Ipkiobj> other = Make<Ipkiobj>();
  engine().on("QUIVO_Initialize").result = 0x7005;
  expectMessage(L"Ошибка инициализации КОРВИС (x64).\nПричина отказа.", 0x7005,
                [&] { return other->Init(Bstr(L"My")); });
}

TEST_F(LegacyMessageWindows, AMessageWithoutACodeHasOneLine) {
  Ptr<Ipkiobj> other = Make<Ipkiobj>();
  engine().on("QUIVO_Initialize").result = -1;
  expectMessage(L"Ошибка инициализации КОРВИС (x64).", 0xFFFFFFFF, [&] { return other->Init(Bstr(L"My")); });
}

TEST_F(LegacyMessageWindows, SignShowsItsFailure) {
  engine().on("QUIVO_SignFile").result = 0x7020;
  expectMessage(L"Ошибка выполнения ЭП файла C:\\договор.doc.\nПричина отказа.", 0x80007020,
                [&] { return object->Sign(Bstr(L"C:\\договор.doc"), Bstr(L"out"), 0); });
}

TEST_F(LegacyMessageWindows, SignShowsAFailedCheckOfTheSignatures) {
  engine().on("QUIVO_SignedInfoFile").result = 0;
  engine().on("QUIVO_VerifyFile").result = 0x7021;
  expectMessage(L"Ошибка проверки ЭП файла in.\nПричина отказа.", 0x7021,
                [&] { return object->Sign(Bstr(L"in"), Bstr(L"out"), 0); });
}

TEST_F(LegacyMessageWindows, VerifyShowsItsFailure) {
  engine().on("QUIVO_VerifyFile").result = 0x7021;
  expectMessage(L"Ошибка проверки ЭП файла in.\nПричина отказа.", 0x7021,
                [&] { return object->Verify(Bstr(L"in"), Bstr(L"out")); });
}

TEST_F(LegacyMessageWindows, EncryptShowsItsFailure) {
  engine().on("QUIVO_EncryptFile").result = 0x7030;
  expectMessage(L"Ошибка выполнения шифрования файла in.\nПричина отказа.", 0x80007030,
                [&] { return object->Encrypt(Bstr(L"in"), Bstr(L"out")); });
}

TEST_F(LegacyMessageWindows, SignAndEncryptShowsItsFailure) {
  engine().on("QUIVO_SignAndEncryptFile").result = 0x7030;
  expectMessage(L"Ошибка выполнения ЭП и шифрования файла in.\nПричина отказа.", 0x80007030,
                [&] { return object->SignAndEncrypt(Bstr(L"in"), Bstr(L"out")); });
}

TEST_F(LegacyMessageWindows, UnencryptShowsThatItsInputIsMissing) {
  expectMessage(L"Ошибка доступа к файлу C:\\нет.p7e.\nПричина отказа.", 1,
                [&] { return object->Unencrypt(Bstr(L"C:\\нет.p7e"), Bstr(L"out"), 1); });
}

TEST_F(LegacyMessageWindows, VerifyAndUnencryptShowsItsFailure) {
  const std::wstring in = create(L"письмо.p7a");
  engine().on("QUIVO_DecryptAndVerifyFile").result = 0x7035;
  expectMessage(L"Ошибка расшифрования/проверки ЭП файла " + in + L".\nПричина отказа.", 0x7035,
                [&] { return object->VerifyAndUnencrypt(Bstr(in), Bstr(L"out")); });
}

TEST_F(LegacyMessageWindows, UnencryptWithoutShowingShowsNothing) {
  const std::wstring in = create(L"письмо.p7e");
  engine().on("QUIVO_DecryptFile").result = 0x7035;
  EXPECT_HR(0x7035u, object->Unencrypt(Bstr(in), Bstr(L"out"), 0));
}

}  // namespace
