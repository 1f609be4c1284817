#include "ui/seen_sheet.h"

#include <windows.h>

#include <commctrl.h>
#include <prsht.h>

namespace {

SeenList LookAtList(HWND list) {
  SeenList seen;
  wchar_t text[1024];
  for (int i = 0;; ++i) {
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT | LVCF_SUBITEM;
    column.pszText = text;
    column.cchTextMax = 1024;
    if (!SendMessageW(list, LVM_GETCOLUMNW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column))) break;
    seen.columns.push_back({text, column.cx, column.fmt & LVCFMT_JUSTIFYMASK, column.iSubItem});
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

HICON IconOf(HWND page, int control) {
  return reinterpret_cast<HICON>(SendDlgItemMessageW(page, control, STM_GETICON, 0, 0));
}

/// The sheet gives the focus to a field of its page first, and then to another control: the end of that is waited for,
/// some seconds at most.
int SettledFocus(HWND sheet, HWND page) {
  GUITHREADINFO thread{};
  thread.cbSize = sizeof thread;
  for (int tries = 0; tries < 100; ++tries) {
    if (!GetGUIThreadInfo(GetWindowThreadProcessId(sheet, nullptr), &thread)) break;
    if (thread.hwndFocus != nullptr && !IsChild(page, thread.hwndFocus)) break;
    Sleep(30);
  }
  return GetDlgCtrlID(thread.hwndFocus);
}

}  // namespace

SeenSheet LookAtSheet(HWND sheet) {
  SeenSheet seen;
  seen.window = Look(sheet);
  const auto page = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
  seen.list = LookAtList(GetDlgItem(page, 201));
  for (const Placed& control : kControls) {
    // Each number is turned into pixels by itself, as the dialog manager does.
    RECT place{control.x, control.y, control.width, control.height};
    MapDialogRect(page, &place);
    seen.expectedPlaces.push_back(place);
  }
  seen.header = IconOf(page, 1023);
  seen.decryption = IconOf(page, 1021);
  seen.verification = IconOf(page, 1022);
  wchar_t text[100] = {};
  TCITEMW tab{};
  tab.mask = TCIF_TEXT;
  tab.pszText = text;
  tab.cchTextMax = 100;
  const auto tabs = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETTABCONTROL, 0, 0));
  SendMessageW(tabs, TCM_GETITEMW, 0, reinterpret_cast<LPARAM>(&tab));
  seen.tab = text;
  seen.focus = SettledFocus(sheet, page);
  seen.verdictFrom = SendDlgItemMessageW(page, 1007, EM_GETFIRSTVISIBLELINE, 0, 0);
  return seen;
}
