#include "ui/user.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr DWORD kPatience = 15000;
constexpr DWORD kStep = 20;

std::wstring TextOf(HWND window) {
  wchar_t text[2048] = {};
  SendMessageW(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
  return text;
}

std::wstring KindOf(HWND window) {
  wchar_t kind[256] = {};
  GetClassNameW(window, kind, 256);
  return kind;
}

RECT PlaceOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
  return place;
}

BOOL CALLBACK AddControl(HWND window, LPARAM list) {
  reinterpret_cast<std::vector<SeenControl>*>(list)->push_back(
      {GetDlgCtrlID(window), KindOf(window), TextOf(window), PlaceOf(window), IsWindowVisible(window) != FALSE,
       IsWindowEnabled(window) != FALSE, static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)), window});
  return TRUE;
}

bool IsShownByThisProcess(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  return process == GetCurrentProcessId() && IsWindowVisible(window);
}

BOOL CALLBACK AddTopLevel(HWND window, LPARAM list) {
  if (IsShownByThisProcess(window)) reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  return TRUE;
}

std::vector<HWND> ShownWindows() {
  std::vector<HWND> all;
  EnumWindows(AddTopLevel, reinterpret_cast<LPARAM>(&all));
  return all;
}

template <class Condition>
bool WaitFor(Condition condition) {
  for (DWORD waited = 0; waited < kPatience; waited += kStep) {
    if (condition()) return true;
    Sleep(kStep);
  }
  return false;
}

}  // namespace

SeenControl SeenWindow::control(int id) const {
  for (const SeenControl& control : controls)
    if (control.id == id) return control;
  ADD_FAILURE() << "no control " << id;
  return {};
}

bool SeenWindow::has(int id) const {
  for (const SeenControl& control : controls)
    if (control.id == id) return true;
  return false;
}

std::vector<int> SeenWindow::visible(const wchar_t* kind) const {
  std::vector<int> ids;
  for (const SeenControl& control : controls)
    if (control.visible && control.kind == kind) ids.push_back(control.id);
  return ids;
}

SeenWindow Look(HWND window) {
  SeenWindow seen;
  seen.caption = TextOf(window);
  seen.window = window;
  seen.owner = GetWindow(window, GW_OWNER);
  EnumChildWindows(window, AddControl, reinterpret_cast<LPARAM>(&seen.controls));
  return seen;
}

std::wstring TextOfMessage(const SeenWindow& box) { return box.control(0xFFFF).text; }

void Press(HWND window, int button) {
  PostMessageW(window, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(window, button)));
}

void PressCloseBox(HWND window) { PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0); }

void SetMark(HWND checkBox, bool checked) {
  if ((SendMessageW(checkBox, BM_GETCHECK, 0, 0) == BST_CHECKED) != checked) SendMessageW(checkBox, BM_CLICK, 0, 0);
}

void TypeText(HWND edit, const std::wstring& text) {
  SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

bool TakePicture(const std::string& name) {
  // The runner looks for requests, takes the picture from outside, and answers by its file.
  const char* folder = std::getenv("TAVL_PICTURES");
  if (folder == nullptr) return true;
  const std::string path = std::string(folder) + "\\" + name;
  DeleteFileA((path + ".png").c_str());
  // What is drawn has to reach the display before.
  GdiFlush();
  Sleep(100);
  if (FILE* request = std::fopen((path + ".request").c_str(), "w")) std::fclose(request);
  return WaitFor([&] { return GetFileAttributesA((path + ".png").c_str()) != INVALID_FILE_ATTRIBUTES; });
}

User::User(const std::wstring& caption, std::function<void(HWND)> act)
    : User(
          caption, [caption](HWND window) { return TextOf(window) == caption; }, std::move(act)) {}

User::User(const std::wstring& name, Recognition is, std::function<void(HWND)> act)
    : name_(name), is_(std::move(is)), act_(std::move(act)), thread_(CreateThread(nullptr, 0, run, this, 0, nullptr)) {}

User::~User() {
  WaitForSingleObject(thread_, INFINITE);
  CloseHandle(thread_);
  if (!complaint_.empty()) ADD_FAILURE() << ::testing::PrintToString(complaint_);
}

DWORD WINAPI User::run(void* self) {
  static_cast<User*>(self)->serve();
  return 0;
}

void User::serve() {
  const HWND window = await();
  if (window == nullptr) {
    complaint_ = L"no window \"" + name_ + L"\" came";
    return clear();
  }
  act_(window);
  if (!WaitFor([&] { return !IsWindow(window); })) {
    complaint_ = L"the window \"" + name_ + L"\" did not go";
    clear();
  }
}

HWND User::await() {
  HWND found = nullptr;
  WaitFor([&] {
    for (HWND window : ShownWindows())
      if (is_(window)) found = window;
    return found != nullptr;
  });
  return found;
}

void User::clear() {
  for (HWND window : ShownWindows()) {
    complaint_ += L"; closed \"" + TextOf(window) + L"\"";
    for (int refusal : {IDNO, IDCANCEL, IDOK}) Press(window, refusal);
    PostMessageW(window, WM_CLOSE, 0, 0);
  }
}

void StartWatchdog(DWORD seconds) {
  CreateThread(
      nullptr, 0,
      [](void* limit) -> DWORD {
        Sleep(static_cast<DWORD>(reinterpret_cast<uintptr_t>(limit)) * 1000);
        std::fprintf(stderr, "the watchdog ends the run\n");
        TerminateProcess(GetCurrentProcess(), 3);
        return 0;
      },
      reinterpret_cast<void*>(static_cast<uintptr_t>(seconds)), 0, nullptr);
}
