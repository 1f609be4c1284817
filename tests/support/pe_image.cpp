#include "support/pe_image.h"

#include <algorithm>
#include <cstring>

PeImage::PeImage(const std::wstring& path)
    : module_(LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_IMAGE_RESOURCE)) {
  // The low bits of such a handle state how the file is mapped.
  base_ = reinterpret_cast<const BYTE*>(reinterpret_cast<ULONG_PTR>(module_) & ~static_cast<ULONG_PTR>(3));
  // A loader may write the address into the mapped header: the wish of the file itself is read from the file.
  HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  BYTE start[1024] = {};
  DWORD size = 0;
  ReadFile(file, start, sizeof start, &size, nullptr);
  CloseHandle(file);
  const auto dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(start);
  if (dos->e_lfanew > 0 && dos->e_lfanew + sizeof(IMAGE_NT_HEADERS64) <= size) {
    preferredBase_ = reinterpret_cast<const IMAGE_NT_HEADERS64*>(start + dos->e_lfanew)->OptionalHeader.ImageBase;
  }
}

PeImage::~PeImage() {
  if (module_ != nullptr) FreeLibrary(module_);
}

const IMAGE_NT_HEADERS64& PeImage::header() const { return *at<IMAGE_NT_HEADERS64>(at<IMAGE_DOS_HEADER>(0)->e_lfanew); }

const IMAGE_DATA_DIRECTORY& PeImage::directory(int index) const { return header().OptionalHeader.DataDirectory[index]; }

std::set<std::string> PeImage::importedLibraries() const {
  std::set<std::string> names;
  auto import = at<IMAGE_IMPORT_DESCRIPTOR>(directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
  for (; import->Name != 0; ++import) {
    std::string name = at<char>(import->Name);
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
    names.insert(name);
  }
  return names;
}

std::set<std::string> PeImage::exports() const {
  std::set<std::string> names;
  const auto table = at<IMAGE_EXPORT_DIRECTORY>(directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
  const auto entries = at<DWORD>(table->AddressOfNames);
  for (DWORD i = 0; i < table->NumberOfNames; ++i) names.insert(at<char>(entries[i]));
  return names;
}
