// What the results sheet asks of the platform, and calls that arrive while it shows a certificate.
#include <windows.h>

#include <commctrl.h>
#include <prsht.h>

#include "support/certificates.h"
#include "support/import_patch.h"
#include "ui/ui_test.h"

namespace {

struct ImageList {
  int width, height;
  UINT flags;
  int initial, growth;
  bool operator==(const ImageList&) const = default;
};

std::vector<ImageList> imageLists;

HIMAGELIST WINAPI CreateImages(int width, int height, UINT flags, int initial, int growth) {
  imageLists.push_back({width, height, flags, initial, growth});
  return ImageList_Create(width, height, flags, initial, growth);
}

FARPROC WINAPI FindProc(HMODULE library, LPCSTR name) {
  if (!IS_INTRESOURCE(name) && std::string(name) == "ImageList_Create")
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(CreateImages));
  return GetProcAddress(library, name);
}

class SheetCalls : public UiTest {
 protected:
  void SetUp() override {
    UiTest::SetUp();
    engine().on("QUIVO_VerifyFile").signatures.resize(1);
    engine().on("QUIVO_VerifyFile").signatures[0].cert = CertificateOf("CN=A");
  }
  HRESULT verify() { return object->Verify(Bstr(L"in"), Bstr(path(L"result"))); }
  static void showSigner(HWND sheet) {
    const auto page = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
    SendMessageW(GetDlgItem(page, 1004), BM_CLICK, 0, 0);
  }
};

TEST_F(SheetCalls, ImagesOfTheSignersAreMaskedAndGrowByTwo) {
  const ImportPatch finding(Module::get().handle(), "GetProcAddress", reinterpret_cast<void*>(FindProc));
  imageLists.clear();
  User user(kSheetCaption, [](HWND sheet) { Press(sheet, IDOK); });
  EXPECT_OK(verify());
  EXPECT_EQ((std::vector<ImageList>{{16, 16, ILC_COLOR32 | ILC_MASK, 2, 2}}), imageLists);
}

TEST_F(SheetCalls, SessionClosedWhileACertificateIsShownServesTheSheetToItsEnd) {
  engine().once("QUIVO_ShowCertificate").during = [&] {
    EXPECT_OK(object->Uninit());
    EXPECT_OK(object->Init(Bstr(L"Other")));
  };
  User user(kSheetCaption, [](HWND sheet) {
    showSigner(sheet);
    showSigner(sheet);
    Press(sheet, IDOK);
  });
  EXPECT_OK(verify());
  EXPECT_EQ(2u, engine().count("QUIVO_ShowCertificate"));
  EXPECT_EQ("QUIVO_Uninitialize", engine().names().back());
  EXPECT_EQ(1u, engine().openSessions());
}

}  // namespace
