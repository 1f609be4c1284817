// Opens a protected file as the shell does, and answers every window that comes up:
//   open_and_answer MODULE FILE [keep] [refuse] [picture]
// Runs "rundll32 MODULE,FileOpen FILE" in the current folder. Windows are accepted; "keep" marks the save
// dialog's box before, "refuse" cancels the results sheet, "picture" keeps a picture of the sheet. Prints each window
// with its texts, in UTF-8, and at last the exit code of rundll32, which is the program's own too; it is 1 when the
// opening did not come to its end in time.
#include <windows.h>

#include <commctrl.h>

#include <cstdio>
#include <set>
#include <string>

#include "ui/user.h"

namespace {

constexpr int kKeepSigned = 119;
constexpr int kSignerList = 201;
constexpr DWORD kPatience = 60000;

bool keeps = false;
bool refuses = false;
bool takesPicture = false;

void Print(const std::wstring& text) {
  char utf8[8192] = {};
  WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, utf8, sizeof utf8 - 1, nullptr, nullptr);
  for (char* line = utf8; *line != '\0'; ++line)
    if (*line == '\n') *line = '|';
  std::printf("%s\n", utf8);
  std::fflush(stdout);
}

void PrintTexts(const SeenWindow& seen) {
  Print(L"window: " + seen.caption);
  for (const SeenControl& control : seen.controls) {
    const bool isIcon = control.kind == L"Static" && (control.style & SS_TYPEMASK) == SS_ICON;
    const bool hasText = (control.kind == L"Static" || control.kind == L"Edit") && !isIcon && !control.text.empty();
    if (control.visible && hasText) Print(L"  " + control.text);
  }
}

/// The rows of the signer list, which is another process's: texts are read by way of that process's memory.
void PrintRows(HWND list) {
  DWORD id = 0;
  GetWindowThreadProcessId(list, &id);
  const HANDLE process = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id);
  struct Request {
    LVITEMW item;
    wchar_t text[512];
  };
  auto there = static_cast<Request*>(VirtualAllocEx(process, nullptr, sizeof(Request), MEM_COMMIT, PAGE_READWRITE));
  const int rows = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < rows; ++row) {
    std::wstring line = L"  row:";
    for (int column = 0; column < 3; ++column) {
      Request request{};
      request.item.iSubItem = column;
      request.item.pszText = there->text;
      request.item.cchTextMax = 512;
      WriteProcessMemory(process, there, &request, sizeof request, nullptr);
      SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&there->item));
      ReadProcessMemory(process, there, &request, sizeof request, nullptr);
      line += L" [" + std::wstring(request.text) + L"]";
    }
    Print(line);
  }
  VirtualFreeEx(process, there, 0, MEM_RELEASE);
  CloseHandle(process);
}

void Answer(HWND window) {
  const SeenWindow seen = Look(window);
  PrintTexts(seen);
  bool isSheet = false;
  for (const SeenControl& control : seen.controls) {
    if (control.id == kKeepSigned && keeps) SetMark(control.window, true);
    if (control.id == kSignerList) {
      isSheet = true;
      if (control.visible) PrintRows(control.window);
    }
  }
  if (isSheet && takesPicture) TakePicture("sheet");
  Press(window, isSheet && refuses ? IDCANCEL : IDOK);
}

struct Search {
  DWORD process;
  std::set<HWND> seen;
};

BOOL CALLBACK AnswerNew(HWND window, LPARAM data) {
  auto& search = *reinterpret_cast<Search*>(data);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  wchar_t kind[32] = {};
  GetClassNameW(window, kind, 32);
  const bool isNew = process == search.process && IsWindowVisible(window) && std::wstring(kind) == L"#32770" &&
                     search.seen.insert(window).second;
  if (isNew) Answer(window);
  return TRUE;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count < 3) return 2;
  for (int i = 3; i < count; ++i) {
    keeps = keeps || std::wstring(arguments[i]) == L"keep";
    refuses = refuses || std::wstring(arguments[i]) == L"refuse";
    takesPicture = takesPicture || std::wstring(arguments[i]) == L"picture";
  }
  std::wstring line = L"rundll32 " + std::wstring(arguments[1]) + L",FileOpen " + arguments[2];
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process)) return 2;
  Search search{process.dwProcessId, {}};
  DWORD waited = 0;
  constexpr DWORD kStep = 50;
  while (WaitForSingleObject(process.hProcess, kStep) == WAIT_TIMEOUT && waited < kPatience) {
    EnumWindows(AnswerNew, reinterpret_cast<LPARAM>(&search));
    waited += kStep;
  }
  DWORD code = 1;
  if (waited < kPatience) {
    GetExitCodeProcess(process.hProcess, &code);
  } else {
    Print(L"the opening was ended: it waits for something");
    TerminateProcess(process.hProcess, code);
  }
  Print(L"rundll32 ended with " + std::to_wstring(code));
  return static_cast<int>(code);
}
