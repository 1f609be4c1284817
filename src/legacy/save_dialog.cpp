#include "legacy/save_dialog.h"

#include <commdlg.h>

#include "com/module.h"
#include "legacy/legacy_resources.h"
#include "legacy/system_library.h"

namespace legacy {
namespace {

constexpr DWORD kFlags = OFN_EXPLORER | OFN_PATHMUSTEXIST | OFN_NOCHANGEDIR | OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;

/// Reads the check box of the save-option panel when the user has chosen a file.
UINT_PTR CALLBACK OptionHook(HWND panel, UINT message, WPARAM, LPARAM lParam) {
  if (message != WM_NOTIFY || reinterpret_cast<const NMHDR*>(lParam)->code != CDN_FILEOK) return 0;
  auto* request = reinterpret_cast<SaveRequest*>(reinterpret_cast<const OFNOTIFYA*>(lParam)->lpOFN->lCustData);
  request->keepsSignedCopy = IsDlgButtonChecked(panel, IDC_KEEP_SIGNED) == BST_CHECKED;
  return 0;
}

}  // namespace

bool AskWhereToSave(SaveRequest& request) {
  SystemLibrary library(L"comdlg32.dll");
  auto* show = library.find<decltype(GetSaveFileNameA)>("GetSaveFileNameA");
  if (!show) return false;
  OPENFILENAMEA dialog{};
  dialog.lStructSize = sizeof(dialog);
  dialog.hwndOwner = GetActiveWindow();
  dialog.hInstance = com::module::Instance();
  dialog.lpstrFilter = "Все файлы (*.*)\0*.*\0";
  dialog.lpstrFile = request.path;
  dialog.nMaxFile = sizeof(request.path);
  dialog.lpstrInitialDir = request.startFolder;
  dialog.Flags = kFlags;
  dialog.lCustData = reinterpret_cast<LPARAM>(&request);
  if (request.offersSignedCopy) {
    dialog.Flags |= OFN_ENABLEHOOK | OFN_ENABLETEMPLATE;
    dialog.lpfnHook = OptionHook;
    dialog.lpTemplateName = MAKEINTRESOURCEA(IDD_SAVE_OPTION);
  }
  return show(&dialog) != FALSE;
}

}  // namespace legacy
