#include "contract/legacy/desktop.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "support/module.h"
#include "support/values.h"

namespace {

LegacyDesktop* desktop = nullptr;

std::wstring wideOrEmpty(const char* text) { return text == nullptr ? L"" : WideOf(text); }
WORD resourceNumber(const char* name) { return IS_INTRESOURCE(name) ? LOWORD(name) : 0; }

// What stands in for the platform.

int WINAPI showMessage(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
  desktop->messages.push_back({WideOf(text), WideOf(caption), style, owner});
  if (desktop->duringMessage) desktop->duringMessage();
  return desktop->messageAnswer;
}

HWND WINAPI foregroundWindow() { return desktop->foreground; }
HWND WINAPI activeWindow() { return desktop->active; }
__time64_t theTime(__time64_t*) {
  ++desktop->clockReads;
  return desktop->now;
}

LSTATUS WINAPI setValue(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
  RegistryWrite write{key, WideOf(name), type, size, 0, {}};
  if (size == sizeof(DWORD)) std::memcpy(&write.value, data, sizeof(DWORD));
  write.data.assign(data, data + size);
  desktop->writes.push_back(write);
  return RegSetValueExA(key, name, reserved, type, data, size);
}

PROPSHEETPAGEA createdPage;

HPROPSHEETPAGE WINAPI createPage(const PROPSHEETPAGEA* page) {
  createdPage = *page;
  return reinterpret_cast<HPROPSHEETPAGE>(&createdPage);
}

INT_PTR WINAPI showSheet(const PROPSHEETHEADERA* header) {
  EXPECT_EQ(reinterpret_cast<HPROPSHEETPAGE>(&createdPage), header->phpage[0]);
  desktop->sheets.push_back({WideOf(header->pszCaption), header->dwFlags, header->hwndParent, header->nPages,
                             header->pfnCallback != nullptr, resourceNumber(createdPage.pszTemplate),
                             createdPage.dwFlags, createdPage.pfnCallback != nullptr});
  if (desktop->duringSheet) desktop->duringSheet();
  return desktop->sheetAnswer;
}

BOOL WINAPI askForFile(OPENFILENAMEA* dialog) {
  const char* pattern = dialog->lpstrFilter + std::strlen(dialog->lpstrFilter) + 1;
  desktop->saveDialogs.push_back({dialog->lStructSize, dialog->Flags, dialog->hwndOwner, WideOf(dialog->lpstrFilter),
                                  WideOf(pattern), WideOf(dialog->lpstrFile), dialog->nMaxFile,
                                  wideOrEmpty(dialog->lpstrInitialDir), resourceNumber(dialog->lpTemplateName),
                                  dialog->lpfnHook != nullptr});
  return desktop->saveAnswer(*dialog);
}

BOOL WINAPI execute(SHELLEXECUTEINFOA* request) {
  desktop->executions.push_back(
      {request->fMask, wideOrEmpty(request->lpVerb), wideOrEmpty(request->lpFile), request->nShow});
  if (desktop->duringExecution) desktop->duringExecution();
  return FALSE;
}

template <class Function>
FARPROC proc(Function* function) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

FARPROC WINAPI findProc(HMODULE module, LPCSTR name) {
  if (!IS_INTRESOURCE(name)) {
    const std::string wanted = name;
    if (wanted == desktop->missing) return nullptr;
    if (wanted == "CreatePropertySheetPageA") return proc(createPage);
    if (wanted == "PropertySheetA") return proc(showSheet);
    if (wanted == "GetSaveFileNameA") return proc(askForFile);
    if (wanted == "ShellExecuteExA") return proc(execute);
  }
  return GetProcAddress(module, name);
}

}  // namespace

LegacyDesktop::LegacyDesktop() {
  desktop = this;
  const std::map<const char*, void*> replacements = {
      {"MessageBoxA", reinterpret_cast<void*>(showMessage)},
      {"GetForegroundWindow", reinterpret_cast<void*>(foregroundWindow)},
      {"GetActiveWindow", reinterpret_cast<void*>(activeWindow)},
      {"_time64", reinterpret_cast<void*>(theTime)},
      {"RegSetValueExA", reinterpret_cast<void*>(setValue)},
      {"GetProcAddress", reinterpret_cast<void*>(findProc)},
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
