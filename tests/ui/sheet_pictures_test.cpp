// Pictures of the results sheet at its extremes and at two resolutions, for a person to look at. The tests check what a
// program can see of them: that everything has its place and its text.
#include <cstdlib>

#include "ui/results_sheet.h"

namespace {

constexpr char kBoth[] = "QUIVO_DecryptAndVerifyFile";
constexpr int kLabels[] = {1024, 1025, 1026, 1027};
constexpr size_t kLongestStatus = 255;
constexpr size_t kLongestName = 511;

int WantedDpi() {
  const char* dpi = std::getenv("TAVL_DPI");
  return dpi == nullptr ? 96 : std::atoi(dpi);
}

int DpiOf(HWND window) {
  const HDC context = GetDC(window);
  const int dpi = GetDeviceCaps(context, LOGPIXELSX);
  ReleaseDC(window, context);
  return dpi;
}

LONG WidthOfText(const SeenControl& control) {
  const HDC context = GetDC(control.window);
  const HGDIOBJ before =
      SelectObject(context, reinterpret_cast<HGDIOBJ>(SendMessageW(control.window, WM_GETFONT, 0, 0)));
  SIZE size{};
  GetTextExtentPoint32W(context, control.text.c_str(), static_cast<int>(control.text.size()), &size);
  SelectObject(context, before);
  ReleaseDC(control.window, context);
  return size.cx;
}

class ResultsSheetPictures : public ResultsSheetTest {
 protected:
  static void SetUpTestSuite() { SetProcessDPIAware(); }
  void SetUp() override {
    ResultsSheetTest::SetUp();
    engine().on(kBoth).certificate = CertificateOf(L"CN=Борис Волков, O=ООО Пример", 7);
  }

  /// Shows the sheet, keeps a picture of it as NAME-DPI, and checks the places of its controls.
  SeenSheet sheet(const std::string& name) {
    SeenSheet seen;
    std::map<int, LONG> widths;
    int dpi = 0;
    bool pictureTaken = false;
    RECT page{};
    User user(kSheetCaption, [&](HWND window) {
      seen = LookAtSheet(window);
      dpi = DpiOf(window);
      for (int id : kLabels) widths[id] = WidthOfText(seen.window.control(id));
      GetClientRect(GetParent(seen.window.control(1024).window), &page);
      pictureTaken = TakePicture(name + "-" + std::to_string(dpi));
      Press(window, IDOK);
    });
    EXPECT_OK(verifyAndUnencrypt());
    EXPECT_EQ(WantedDpi(), dpi);
    EXPECT_TRUE(pictureTaken);
    for (const auto& [id, width] : widths) {
      const RECT& place = seen.window.control(id).place;
      EXPECT_LE(width, place.right - place.left) << "the text of " << id;
    }
    expectSeparate(seen, page);
    return seen;
  }

 private:
  void expectSeparate(const SeenSheet& seen, const RECT& page) {
    for (const Placed& one : kControls) {
      const RECT place = seen.window.control(one.id).place;
      RECT common;
      EXPECT_TRUE(UnionRect(&common, &page, &place) && EqualRect(&common, &page)) << one.id << " leaves the page";
      for (const Placed& other : kControls) {
        if (other.id <= one.id) continue;
        const RECT otherPlace = seen.window.control(other.id).place;
        EXPECT_FALSE(IntersectRect(&common, &place, &otherPlace)) << one.id << " covers " << other.id;
      }
    }
  }
};

TEST_F(ResultsSheetPictures, OneSigner) {
  addSigner(kBoth, 0, 1700000000, L"CN=Анна Петрова, O=ООО Пример");
  EXPECT_EQ(1u, sheet("one-signer").list.rows.size());
}

TEST_F(ResultsSheetPictures, FiftySigners) {
  for (int i = 1; i <= 50; ++i) {
    addSigner(kBoth, 0, 1700000000 + static_cast<uint32_t>(i) * 86400, L"CN=Подписавший " + std::to_wstring(i));
  }
  const SeenSheet seen = sheet("fifty-signers");
  ASSERT_EQ(50u, seen.list.rows.size());
  EXPECT_EQ(L"Подписавший 50", seen.list.rows.back()[1]);
}

TEST_F(ResultsSheetPictures, LongestTexts) {
  const std::wstring status(kLongestStatus, L'Щ');
  const std::wstring name(kLongestName, L'Ж');
  engine().on("QUIVO_GetErrorText").text = AnsiOf(status);
  engine().on(kBoth).certificate = CertificateOf(L"CN=" + name, 7);
  addSigner(kBoth, 0, 1700000000, L"CN=" + name);
  addSigner(kBoth, 0x7026, 1700000000, L"CN=" + name);
  const SeenSheet seen = sheet("longest-texts");
  EXPECT_EQ(status, seen.window.control(1005).text);
  EXPECT_EQ(name, seen.window.control(1006).text);
  EXPECT_EQ(status, seen.window.control(1007).text);
  ASSERT_EQ(2u, seen.list.rows.size());
  EXPECT_EQ(status, seen.list.rows[1][0]);
  EXPECT_EQ(name, seen.list.rows[1][1]);
}

}  // namespace
