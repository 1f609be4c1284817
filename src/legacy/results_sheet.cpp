// The results sheet: puts what the model decided into the controls of the page, and shows certificates.
#include <windows.h>

#include <commctrl.h>
#include <prsht.h>

#include "com/module.h"
#include "legacy/legacy_resources.h"
#include "legacy/messages.h"
#include "legacy/results_model.h"
#include "legacy/system_library.h"

namespace legacy {
namespace {

// The number of the system's error icon, which the module's own resources lack: the rows of failing signers stand
// without an image, on purpose: "The missing icon" in docs/behaviour.md.
constexpr WORD kFailingSignerIcon = 32513;

/// What the sheet needs of the common controls.
struct CommonControls {
  SystemLibrary library{L"comctl32.dll"};
  decltype(InitCommonControlsEx)* init = library.find<decltype(InitCommonControlsEx)>("InitCommonControlsEx");
  decltype(CreatePropertySheetPageA)* createPage =
      library.find<decltype(CreatePropertySheetPageA)>("CreatePropertySheetPageA");
  decltype(PropertySheetA)* showSheet = library.find<decltype(PropertySheetA)>("PropertySheetA");
  decltype(ImageList_Create)* createImages = library.find<decltype(ImageList_Create)>("ImageList_Create");
  decltype(ImageList_ReplaceIcon)* replaceIcon = library.find<decltype(ImageList_ReplaceIcon)>("ImageList_ReplaceIcon");

  bool isComplete() const { return init && createPage && showSheet && createImages && replaceIcon; }
};

/// The page while the sheet is shown.
class ResultsPage {
 public:
  ResultsPage(const Results& results, const CommonControls& controls)
      : session_(results.session), model_(results), controls_(controls) {}

  void fill(HWND page);
  void command(WORD button) const;

 private:
  void fillDecryption() const;
  void fillVerification() const;
  void prepareList() const;
  void addRow(int index, const SignerRow& row, int image) const;
  int addImage(HIMAGELIST images, WORD icon) const;
  void setText(int control, const char* text) const { SetDlgItemTextA(page_, control, text); }
  void setIcon(HWND control, int icon) const;
  void show(const CertificateRecord* certificate) const;

  EngineSession session_;
  const ResultsModel model_;
  const CommonControls& controls_;
  HWND page_ = nullptr;
  HWND list_ = nullptr;
  HWND headerIcon_ = nullptr;
  HWND decryptionIcon_ = nullptr;
};

void ResultsPage::fill(HWND page) {
  page_ = page;
  list_ = GetDlgItem(page, IDC_SIGNERS);
  headerIcon_ = GetDlgItem(page, IDC_HEADER_ICON);
  decryptionIcon_ = GetDlgItem(page, IDC_DECRYPTION_ICON);
  ResultsModel::Hidden hidden = model_.hidden();
  for (int i = 0; i < hidden.count; ++i) ShowWindow(GetDlgItem(page, hidden.controls[i]), SW_HIDE);
  if (model_.hasDecryption()) fillDecryption();
  if (model_.hasVerification()) fillVerification();
  setIcon(headerIcon_, model_.headerIcon());
}

void ResultsPage::fillDecryption() const {
  setIcon(decryptionIcon_, model_.decryptionIcon());
  char status[kErrorTextSize + 1];
  model_.decryptionStatus(status);
  setText(IDC_DECRYPTION_STATUS, status);
  char name[kNameSize];
  model_.encrypterName(name);
  setText(IDC_ENCRYPTER, name);
}

void ResultsPage::fillVerification() const {
  char status[kErrorTextSize + 1];
  model_.verificationStatus(status);
  setText(IDC_VERIFICATION_STATUS, status);
  prepareList();
  // The list destroys its images.
  HIMAGELIST images = controls_.createImages(16, 16, ILC_COLOR32 | ILC_MASK, 2, 2);
  SendMessageA(list_, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images));
  int good = addImage(images, IDI_SIGNER_GOOD);
  int failing = addImage(images, kFailingSignerIcon);
  for (int i = 0; i < model_.signerCount(); ++i) {
    SignerRow row = model_.signer(i);
    addRow(i, row, row.isGood ? good : failing);
  }
}

void ResultsPage::prepareList() const {
  constexpr LPARAM kStyle = LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP;
  SendMessageA(list_, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, kStyle);
  constexpr struct {
    const char* heading;
    int width;
  } kColumns[] = {{"Результат", 80}, {"Подписавшие", 120}, {"Время", 110}};
  int index = 0;
  for (const auto& [heading, width] : kColumns) {
    LVCOLUMNA column{};
    column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
    column.fmt = LVCFMT_LEFT;
    column.cx = width;
    column.pszText = const_cast<char*>(heading);
    column.iSubItem = index;
    SendMessageA(list_, LVM_INSERTCOLUMNA, static_cast<WPARAM>(index++), reinterpret_cast<LPARAM>(&column));
  }
}

void ResultsPage::addRow(int index, const SignerRow& row, int image) const {
  LVITEMA item{};
  // The image is named even where there is none: without the flag a row shows the first image of the list.
  item.mask = LVIF_TEXT | LVIF_IMAGE;
  item.iItem = index;
  item.iImage = image;
  item.pszText = const_cast<char*>(row.status);
  SendMessageA(list_, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
  item.mask = LVIF_TEXT;
  const char* const texts[] = {row.name, row.time};
  for (const char* text : texts) {
    ++item.iSubItem;
    item.pszText = const_cast<char*>(text);
    SendMessageA(list_, LVM_SETITEMTEXTA, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
  }
}

int ResultsPage::addImage(HIMAGELIST images, WORD icon) const {
  HANDLE image = LoadImageA(com::module::Instance(), MAKEINTRESOURCEA(icon), IMAGE_ICON, 16, 16, LR_DEFAULTCOLOR);
  int index = controls_.replaceIcon(images, -1, static_cast<HICON>(image));
  if (image) DestroyIcon(static_cast<HICON>(image));
  return index;
}

void ResultsPage::setIcon(HWND control, int icon) const {
  HICON image = LoadIconA(com::module::Instance(), MAKEINTRESOURCEA(icon));
  SendMessageA(control, STM_SETICON, reinterpret_cast<WPARAM>(image), 0);
}

void ResultsPage::command(WORD button) const {
  if (button == IDC_SHOW_ENCRYPTER) show(model_.encrypter());
  if (button == IDC_SHOW_SIGNER) {
    int selected = static_cast<int>(SendMessageA(list_, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    show(model_.signerCertificate(selected));
  }
}

void ResultsPage::show(const CertificateRecord* certificate) const {
  if (!certificate || IsBadReadPtr(certificate, sizeof(*certificate))) return;
  QUIVO_ShowCertificate(session_, &certificate->certEncoded);
}

/// A row without an image asks for one on every drawing; the answer is again that there is none.
void AnswerNoImage(NMHDR* notification) {
  if (notification->code != LVN_GETDISPINFOA && notification->code != LVN_GETDISPINFOW) return;
  LVITEMA& item = reinterpret_cast<NMLVDISPINFOA*>(notification)->item;
  if (item.mask & LVIF_IMAGE) item.iImage = -1;
}

/// A page receives it once the sheet has given the focus to its first field.
constexpr UINT kShown = WM_APP;

/// The sheet has selected the text of the field, which scrolled it to its end.
void FocusOk(HWND sheet) {
  const HWND field = GetFocus();
  SendMessageA(sheet, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(sheet, IDOK)), TRUE);
  SendMessageA(field, EM_SETSEL, 0, 0);
  SendMessageA(field, EM_SCROLLCARET, 0, 0);
}

INT_PTR CALLBACK PageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: {
      auto* shown = reinterpret_cast<ResultsPage*>(reinterpret_cast<PROPSHEETPAGEA*>(lParam)->lParam);
      SetWindowLongPtrA(page, DWLP_USER, reinterpret_cast<LONG_PTR>(shown));
      shown->fill(page);
      PostMessageA(page, kShown, 0, 0);
      return TRUE;
    }
    case kShown:
      FocusOk(GetParent(page));
      return TRUE;
    case WM_COMMAND: {
      const auto* shown = reinterpret_cast<const ResultsPage*>(GetWindowLongPtrA(page, DWLP_USER));
      if (shown && HIWORD(wParam) == BN_CLICKED) shown->command(LOWORD(wParam));
      return TRUE;
    }
    case WM_NOTIFY:
      AnswerNoImage(reinterpret_cast<NMHDR*>(lParam));
      SetWindowLongPtrA(page, DWLP_MSGRESULT, PSNRET_NOERROR);
      return TRUE;
    default:
      return FALSE;
  }
}

UINT CALLBACK PageCallback(HWND, UINT, PROPSHEETPAGEA*) { return TRUE; }
int CALLBACK SheetCallback(HWND, UINT, LPARAM) { return 0; }

}  // namespace

bool ShowResults(const Results& results) {
  CommonControls controls;
  if (!controls.isComplete()) return false;
  const INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_LISTVIEW_CLASSES};
  controls.init(&classes);

  ResultsPage shown(results, controls);
  PROPSHEETPAGEA page{};
  page.dwSize = sizeof(page);
  page.dwFlags = PSP_USECALLBACK;
  page.hInstance = com::module::Instance();
  page.pszTemplate = MAKEINTRESOURCEA(IDD_RESULTS);
  page.pfnDlgProc = PageProcedure;
  page.lParam = reinterpret_cast<LPARAM>(&shown);
  page.pfnCallback = PageCallback;
  HPROPSHEETPAGE created = controls.createPage(&page);
  if (!created) return false;

  PROPSHEETHEADERA sheet{};
  sheet.dwSize = sizeof(sheet);
  sheet.dwFlags = PSH_USECALLBACK | PSH_NOAPPLYNOW;
  sheet.hwndParent = GetActiveWindow();
  sheet.hInstance = com::module::Instance();
  sheet.pszCaption = kLegacyCaption;
  sheet.nPages = 1;
  sheet.phpage = &created;
  sheet.pfnCallback = SheetCallback;
  return controls.showSheet(&sheet) == IDOK;
}

}  // namespace legacy
