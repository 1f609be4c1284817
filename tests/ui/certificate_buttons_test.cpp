// The buttons of the results sheet that show certificates.
#include <windows.h>

#include <commctrl.h>
#include <prsht.h>

#include "ui/results_sheet.h"

namespace {

class CertificateButtons : public ResultsSheetTest {
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
  /// The certificates that are shown for the clicks in the sheet of a method, by the last byte of each.
  std::vector<int> shownFor(const std::function<void(HWND)>& clicks, const std::function<HRESULT()>& method) {
    User user(kSheetCaption, [&](HWND sheet) {
      clicks(sheet);
      Press(sheet, IDOK);
    });
    EXPECT_OK(method());
    std::vector<int> marks;
    for (const fake::Call& call : engine().calls())
      if (call.function == "QUIVO_ShowCertificate") marks.push_back(call.blobBytes(1).back());
    return marks;
  }
  std::vector<int> shownOfSigners(const std::function<void(HWND)>& clicks) {
    return shownFor(clicks, [&] { return verify(); });
  }
};

TEST_F(CertificateButtons, ShowTheEncrypter) {
  engine().on("QUIVO_DecryptFile").certificate = CertificateOf(L"CN=B", 7);
  EXPECT_EQ(std::vector<int>{7}, shownFor([&](HWND sheet) { click(sheet, 1003); }, [&] { return unencrypt(); }));
}

TEST_F(CertificateButtons, ShowTheSelectedSigner) {
  for (uint8_t mark : {1, 2, 3}) addSigner("QUIVO_VerifyFile", 0, 1, L"CN=A", mark);
  const auto clicks = [&](HWND sheet) {
    click(sheet, 1004);
    select(sheet, 2);
    click(sheet, 1004);
    select(sheet, 0);
    click(sheet, 1004);
  };
  EXPECT_EQ((std::vector<int>{3, 1}), shownOfSigners(clicks));
}

TEST_F(CertificateButtons, ShowTheOnlySignerWithoutASelection) {
  addSigner("QUIVO_VerifyFile", 0, 1, L"CN=A", 5);
  EXPECT_EQ(std::vector<int>{5}, shownOfSigners([&](HWND sheet) { click(sheet, 1004); }));
}

TEST_F(CertificateButtons, ShowNothingForASignerWithoutACertificate) {
  engine().on("QUIVO_VerifyFile").signatures.resize(1);
  EXPECT_EQ(std::vector<int>{}, shownOfSigners([&](HWND sheet) { click(sheet, 1004); }));
}

TEST_F(CertificateButtons, ShowNothingForARecordThatCannotBeRead) {
  addSigner("QUIVO_VerifyFile", 0, 1, L"CN=A", 5);
  const auto clicks = [&](HWND sheet) {
    // The pointer to the signer's record, in the first entry of the result.
    const uint64_t entries = *reinterpret_cast<uint64_t*>(engine().only("QUIVO_VerifyFile").value(5) + 8);
    void*& record = *reinterpret_cast<void**>(entries + 8);
    void* const readable = std::exchange(record, reinterpret_cast<void*>(8));
    click(sheet, 1004);
    record = readable;
  };
  EXPECT_EQ(std::vector<int>{}, shownOfSigners(clicks));
}

}  // namespace
