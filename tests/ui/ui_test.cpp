#include "ui/ui_test.h"

#include <cstdio>

namespace {

void RemoveTree(const std::wstring& folder) {
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring name = entry.cFileName, path = folder + L"\\" + name;
    if (name == L"." || name == L"..") continue;
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
      RemoveTree(path);
    else
      DeleteFileW(path.c_str());
  } while (FindNextFileW(search, &entry));
  FindClose(search);
  RemoveDirectoryW(folder.c_str());
}

}  // namespace

void UiTest::SetUp() {
  ContractTest::SetUp();
  // Twice what the slowest test takes.
  static const bool kWatched = (StartWatchdog(150), true);
  EXPECT_TRUE(kWatched);
  wchar_t temp[MAX_PATH];
  GetTempPathW(MAX_PATH, temp);
  folder = std::wstring(temp) + L"окна " + std::to_wstring(GetCurrentProcessId());
  CreateDirectoryW(folder.c_str(), nullptr);
  object = Make<Ipkiobj>();
  EXPECT_OK(object->Init(Bstr(L"My")));
  engine().forgetCalls();
}

void UiTest::TearDown() {
  object->Uninit();
  object.reset();
  RemoveTree(folder);
  ContractTest::TearDown();
}

std::wstring UiTest::create(const std::wstring& name, const std::string& content) {
  if (FILE* file = _wfopen(path(name).c_str(), L"wb")) {
    std::fwrite(content.data(), 1, content.size(), file);
    std::fclose(file);
  }
  return path(name);
}

std::string UiTest::contentOf(const std::wstring& name) const {
  std::string content;
  if (FILE* file = _wfopen(path(name).c_str(), L"rb")) {
    char buffer[1024];
    content.assign(buffer, std::fread(buffer, 1, sizeof buffer, file));
    std::fclose(file);
  }
  return content;
}

void UiTest::letWrite(const char* function, size_t output, const std::string& content) {
  engine().on(function).during = [this, output, content] {
    const fake::Text path = engine().last().text(output);
    if (FILE* file = path ? std::fopen(path->c_str(), "wb") : nullptr) {
      std::fwrite(content.data(), 1, content.size(), file);
      std::fclose(file);
    }
  };
}
