// A file that exists as long as its owner, in the folder for temporary files.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

class TempFile {
 public:
  explicit TempFile(const std::vector<uint8_t>& content, const std::wstring& suffix = L".bin") {
    static int serial = 0;
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    path_ = std::wstring(folder) + L"tavlcom-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
            std::to_wstring(++serial) + suffix;
    const HANDLE file = CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
    CloseHandle(file);
  }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  ~TempFile() { DeleteFileW(path_.c_str()); }

  const std::wstring& path() const { return path_; }
  /// Whether nobody keeps the file open.
  bool closed() const {
    const HANDLE file = CreateFileW(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return true;
  }

 private:
  std::wstring path_;
};
