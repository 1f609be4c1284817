#include "contract/legacy/desktop.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "support/module.h"
#include "support/values.h"

namespace {

LegacyDesktop* desktop = nullptr;

std::wstring WideOrEmpty(const char* text) { return text == nullptr ? L"" : WideOf(text); }
WORD ResourceNumber(const char* name) { return IS_INTRESOURCE(name) ? LOWORD(name) : 0; }

// What stands in for the platform.

int WINAPI ShowMessage(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
  desktop->messages.push_back({WideOf(text), WideOf(caption), style, owner});
  if (desktop->duringMessage) desktop->duringMessage();
  return desktop->messageAnswer;
}

HWND WINAPI ForegroundWindow() { return desktop->foreground; }
HWND WINAPI ActiveWindow() { return desktop->active; }
__time64_t CurrentTime(__time64_t*) {
  ++desktop->clockReads;
  return desktop->now;
}

LSTATUS WINAPI SetValue(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
  RegistryWrite write{key, WideOf(name), type, size, 0, {}};
  if (size == sizeof(DWORD)) std::memcpy(&write.value, data, sizeof(DWORD));
  write.data.assign(data, data + size);
  desktop->writes.push_back(write);
  return RegSetValueExA(key, name, reserved, type, data, size);
}

PROPSHEETPAGEA createdPage;

HPROPSHEETPAGE WINAPI CreatePage(const PROPSHEETPAGEA* page) {
  createdPage = *page;
  return reinterpret_cast<HPROPSHEETPAGE>(&createdPage);
}

INT_PTR WINAPI ShowSheet(const PROPSHEETHEADERA* header) {
  EXPECT_EQ(reinterpret_cast<HPROPSHEETPAGE>(&createdPage), header->phpage[0]);
  desktop->sheets.push_back({WideOf(header->pszCaption), header->dwFlags, header->hwndParent, header->nPages,
                             header->pfnCallback != nullptr, ResourceNumber(createdPage.pszTemplate),
                             createdPage.dwFlags, createdPage.pfnCallback != nullptr});
  if (desktop->duringSheet) desktop->duringSheet();
  return desktop->sheetAnswer;
}

BOOL WINAPI AskForFile(OPENFILENAMEA* dialog) {
  const char* pattern = dialog->lpstrFilter + std::strlen(dialog->lpstrFilter) + 1;
  desktop->saveDialogs.push_back({dialog->lStructSize, dialog->Flags, dialog->hwndOwner, WideOf(dialog->lpstrFilter),
                                  WideOf(pattern), WideOf(dialog->lpstrFile), dialog->nMaxFile,
                                  WideOrEmpty(dialog->lpstrInitialDir), ResourceNumber(dialog->lpTemplateName),
                                  dialog->lpfnHook != nullptr});
  return desktop->saveAnswer(*dialog);
}

BOOL WINAPI Execute(SHELLEXECUTEINFOA* request) {
  desktop->executions.push_back(
      {request->cbSize, request->fMask, WideOrEmpty(request->lpVerb), WideOrEmpty(request->lpFile), request->nShow});
  if (desktop->duringExecution) desktop->duringExecution();
  return FALSE;
}

template <class Function>
FARPROC Address(Function* function) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

FARPROC WINAPI FindProc(HMODULE module, LPCSTR name) {
  if (!IS_INTRESOURCE(name)) {
    const std::string wanted = name;
    if (wanted == desktop->missing) return nullptr;
    if (wanted == "CreatePropertySheetPageA") return Address(CreatePage);
    if (wanted == "PropertySheetA") return Address(ShowSheet);
    if (wanted == "GetSaveFileNameA") return Address(AskForFile);
    if (wanted == "ShellExecuteExA") return Address(Execute);
  }
  return GetProcAddress(module, name);
}

}  // namespace

LegacyDesktop::LegacyDesktop() {
  desktop = this;
  const std::map<const char*, void*> replacements = {
      {"MessageBoxA", reinterpret_cast<void*>(ShowMessage)},
      {"GetForegroundWindow", reinterpret_cast<void*>(ForegroundWindow)},
      {"GetActiveWindow", reinterpret_cast<void*>(ActiveWindow)},
      {"_time64", reinterpret_cast<void*>(CurrentTime)},
      {"RegSetValueExA", reinterpret_cast<void*>(SetValue)},
      {"GetProcAddress", reinterpret_cast<void*>(FindProc)},
  };
  for (const auto& [function, replacement] : replacements)
    patches_.push_back(new ImportPatch(Module::get().handle(), function, replacement));
}

LegacyDesktop::~LegacyDesktop() {
  for (ImportPatch* patch : patches_) delete patch;
  desktop = nullptr;
}

ShownMessage LegacyDesktop::onlyMessage() const {
  EXPECT_EQ(1u, messages.size());
  return messages.empty() ? ShownMessage{} : messages.front();
}

std::vector<std::wstring> LegacyDesktop::texts() const {
  std::vector<std::wstring> all;
  for (const ShownMessage& message : messages) all.push_back(message.text);
  return all;
}
