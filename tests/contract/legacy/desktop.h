// A desktop that shows nothing: while it lives, the windows of the module under test are answered by the test, and
// what they would have shown is written down.
#pragma once

#include <windows.h>

#include <prsht.h>
#include <shellapi.h>

#include <commdlg.h>

#include <functional>
#include <string>
#include <vector>

#include "support/import_patch.h"

struct ShownMessage {
  std::wstring text;
  std::wstring caption;
  UINT style;
  HWND owner;
};

struct ShownSheet {
  std::wstring caption;
  DWORD flags;
  HWND owner;
  UINT pages;
  bool hasCallback;
  // Of its page.
  WORD pageTemplate;
  DWORD pageFlags;
  bool pageHasCallback;
};

struct ShownSaveDialog {
  DWORD size;
  DWORD flags;
  HWND owner;
  std::wstring filter;
  std::wstring filterPattern;
  std::wstring path;
  DWORD pathSize;
  std::wstring startFolder;
  WORD panel;
  bool hasHook;
};

struct Execution {
  DWORD size;
  ULONG mask;
  std::wstring verb;
  std::wstring file;
  int show;
};

struct RegistryWrite {
  HKEY key;
  std::wstring name;
  DWORD type;
  DWORD size;
  /// Of four bytes.
  DWORD value;
  std::vector<BYTE> data;
};

class LegacyDesktop {
 public:
  LegacyDesktop();
  LegacyDesktop(const LegacyDesktop&) = delete;
  LegacyDesktop& operator=(const LegacyDesktop&) = delete;
  ~LegacyDesktop();

  std::vector<ShownMessage> messages;
  std::vector<ShownSheet> sheets;
  std::vector<ShownSaveDialog> saveDialogs;
  std::vector<Execution> executions;
  std::vector<RegistryWrite> writes;

  /// The button that every message box returns.
  int messageAnswer = IDOK;
  /// What PropertySheetA returns.
  INT_PTR sheetAnswer = IDOK;
  /// What the user does in the save dialog; false cancels it.
  std::function<bool(OPENFILENAMEA&)> saveAnswer = [](OPENFILENAMEA&) { return true; };
  /// What runs while a message box is shown.
  std::function<void()> duringMessage;
  /// What runs while a sheet is shown.
  std::function<void()> duringSheet;
  /// What runs while the result is opened with its program.
  std::function<void()> duringExecution;
  /// The runtime's clock.
  int64_t now = 1700000000;
  size_t clockReads = 0;
  /// A function that the platform's libraries do not have.
  std::string missing;
  HWND foreground = reinterpret_cast<HWND>(0x1234);
  HWND active = reinterpret_cast<HWND>(0x5678);

  /// The only message; a failure of the test when there is another number.
  ShownMessage onlyMessage() const;
  std::vector<std::wstring> texts() const;

 private:
  std::vector<ImportPatch*> patches_;
};
