#include "standin/windows/selection_dialog.h"

#include <windows.h>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/certificates/names.h"
#include "standin/windows/display.h"
#include "standin/windows/selection_dialog_ids.h"

namespace standin {
namespace {

struct Selection {
  const std::vector<CertPtr>& candidates;
  std::vector<int> chosen;
};

std::wstring Describe(const X509* certificate) {
  return WideFromUtf8(NameText(X509_get_subject_name(certificate)) + " [" + SerialText(certificate) + "]");
}

void FillList(HWND window, const Selection& selection) {
  const HWND list = GetDlgItem(window, IDC_CANDIDATES);
  for (const CertPtr& certificate : selection.candidates) {
    SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Describe(certificate.get()).c_str()));
  }
  SendMessageW(list, LB_SETSEL, TRUE, 0);
}

void ReadList(HWND window, Selection& selection) {
  const HWND list = GetDlgItem(window, IDC_CANDIDATES);
  for (size_t i = 0; i < selection.candidates.size(); ++i) {
    if (SendMessageW(list, LB_GETSEL, i, 0) > 0) selection.chosen.push_back(static_cast<int>(i));
  }
}

/// Called by the platform, through whose frames nothing may be thrown.
INT_PTR CALLBACK SelectionProcedure(HWND window, UINT message, WPARAM wide, LPARAM parameter) noexcept {
  switch (message) {
    case WM_INITDIALOG:
      SetWindowLongPtrW(window, DWLP_USER, parameter);
      FillList(window, *reinterpret_cast<Selection*>(parameter));
      return TRUE;
    case WM_COMMAND: {
      const bool chooses = LOWORD(wide) == IDC_CANDIDATES && HIWORD(wide) == LBN_DBLCLK;
      if (LOWORD(wide) == IDOK || chooses) {
        ReadList(window, *reinterpret_cast<Selection*>(GetWindowLongPtrW(window, DWLP_USER)));
        EndDialog(window, IDOK);
        return TRUE;
      }
      if (LOWORD(wide) == IDCANCEL) {
        EndDialog(window, IDCANCEL);
        return TRUE;
      }
      return FALSE;
    }
    default:
      return FALSE;
  }
}

HINSTANCE ThisLibrary() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&SelectionProcedure), &module);
  return module;
}

}  // namespace

std::vector<CertPtr> SelectCertificates(const std::vector<CertPtr>& candidates) {
  if (candidates.empty()) Fail(kSelectionCancelled);
  RequireDisplay();
  Selection selection{candidates, {}};
  const INT_PTR answer = DialogBoxParamW(ThisLibrary(), MAKEINTRESOURCEW(IDD_SELECTION), GetActiveWindow(),
                                         SelectionProcedure, reinterpret_cast<LPARAM>(&selection));
  if (answer == -1 || answer == 0) FailWithLastError();
  if (answer != IDOK || selection.chosen.empty()) Fail(kSelectionCancelled);
  std::vector<CertPtr> chosen;
  for (const int index : selection.chosen) chosen.push_back(Share(candidates[static_cast<size_t>(index)].get()));
  return chosen;
}

}  // namespace standin
