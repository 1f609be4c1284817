// Reads the header of a module file.
#pragma once

#include <windows.h>

#include <set>
#include <string>

class PeImage {
 public:
  /// Maps the file without running it.
  explicit PeImage(const std::wstring& path);
  PeImage(const PeImage&) = delete;
  PeImage& operator=(const PeImage&) = delete;
  ~PeImage();

  bool loaded() const { return module_ != nullptr; }
  HMODULE resources() const { return module_; }
  const IMAGE_NT_HEADERS64& header() const;
  /// In lower case.
  std::set<std::string> importedLibraries() const;
  std::set<std::string> exports() const;
  ULONGLONG preferredBase() const { return preferredBase_; }

 private:
  template <class T>
  const T* at(DWORD address) const {
    return reinterpret_cast<const T*>(base_ + address);
  }
  const IMAGE_DATA_DIRECTORY& directory(int index) const;

  HMODULE module_ = nullptr;
  const BYTE* base_ = nullptr;
  ULONGLONG preferredBase_ = 0;
};
