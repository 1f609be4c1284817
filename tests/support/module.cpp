#include "support/module.h"

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void Fail(const char* what) {
  std::fprintf(stderr, "the module under test: %s (error %lu)\n", what, GetLastError());
  std::exit(1);
}

}  // namespace

std::wstring ProgramFolder() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::wstring file = path;
  return file.substr(0, file.rfind(L'\\'));
}

Module& Module::get() {
  static Module module;
  return module;
}

Module::Module() : path_(ProgramFolder() + L"\\tavlcom.dll"), handle_(LoadLibraryW(path_.c_str())) {
  if (handle_ == nullptr) Fail("cannot be loaded");
  getClassObject_ = entry<decltype(getClassObject_)>("DllGetClassObject");
  canUnloadNow_ = entry<decltype(canUnloadNow_)>("DllCanUnloadNow");
  liveObjects_ = entry<decltype(liveObjects_)>("TavlcomLiveObjects");
  liveAllocations_ = entry<decltype(liveAllocations_)>("TavlcomLiveAllocations");
  failAllocation_ = entry<decltype(failAllocation_)>("TavlcomFailAllocation");
  allocationFailed_ = entry<decltype(allocationFailed_)>("TavlcomAllocationFailed");
  if (getClassObject_ == nullptr || canUnloadNow_ == nullptr) Fail("lacks an entry point");
  if (liveObjects_ == nullptr || liveAllocations_ == nullptr) Fail("is not the build that counts");
}

namespace {

std::wstring FolderOf(const std::wstring& path) { return path.substr(0, path.rfind(L'\\')); }

}  // namespace

ModuleCopy::ModuleCopy(const std::wstring& name, const Change& change, DWORD flags)
    : path_(ProgramFolder() + L"\\" + name) {
  CreateDirectoryW(FolderOf(path_).c_str(), nullptr);
  if (FolderOf(path_) != ProgramFolder()) {
    CopyFileW((ProgramFolder() + L"\\tavl1.dll").c_str(), (FolderOf(path_) + L"\\tavl1.dll").c_str(), FALSE);
  }
  CopyFileW(Module::get().path().c_str(), path_.c_str(), FALSE);
  if (change) change(path_);
  handle_ = LoadLibraryExW(path_.c_str(), nullptr, flags);
}

ModuleCopy::~ModuleCopy() {
  FreeLibrary(handle_);
  DeleteFileW(path_.c_str());
  if (FolderOf(path_) == ProgramFolder()) return;
  DeleteFileW((FolderOf(path_) + L"\\tavl1.dll").c_str());
  RemoveDirectoryW(FolderOf(path_).c_str());
}
