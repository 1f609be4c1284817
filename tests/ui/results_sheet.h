// The base of the tests of the results sheet: an engine with signers and certificates, and the methods that show the
// sheet.
#pragma once

#include "ui/seen_sheet.h"
#include "ui/ui_test.h"

inline fake::Certificate CertificateOf(const std::wstring& subject, uint8_t mark) {
  fake::Certificate certificate;
  certificate.fields = 0x10204;
  certificate.subject = AnsiOf(subject);
  certificate.certEncoded = {0x30, 0x01, mark};
  return certificate;
}

class ResultsSheetTest : public UiTest {
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

  std::wstring in;
};
