#include "engine.h"

#include <windows.h>

#include <cstring>
#include <type_traits>

#include "engine/codes.h"

namespace check {
namespace {

int32_t AnswerNotSupported() { return engine::kErrorNotSupported; }
void* NoMemory() { return nullptr; }
int32_t NoText() { return HRESULT_FROM_WIN32(ERROR_NOT_SUPPORTED); }

template <class Function>
Function* Substitute(const char* name) {
  void* function = reinterpret_cast<void*>(AnswerNotSupported);
  if (std::strcmp(name, "QUIVO_AllocMem") == 0) function = reinterpret_cast<void*>(NoMemory);
  if (std::strcmp(name, "QUIVO_EncodeMem") == 0) function = reinterpret_cast<void*>(NoText);
  return reinterpret_cast<Function*>(function);
}

/// The names that a loaded library exports.
class ExportTable {
 public:
  explicit ExportTable(HMODULE library) : base_(reinterpret_cast<const char*>(library)) {
    const auto& dos = at<IMAGE_DOS_HEADER>(0);
    const auto& headers = at<IMAGE_NT_HEADERS64>(static_cast<DWORD>(dos.e_lfanew));
    place_ = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
  }

  /// Empty if the function is not forwarded.
  std::string forwarder(const char* name) const {
    const DWORD place = find(name);
    const bool isText = place >= place_.VirtualAddress && place - place_.VirtualAddress < place_.Size;
    return isText ? base_ + place : "";
  }
  bool has(const char* name) const { return find(name) != 0; }

 private:
  template <class Type>
  const Type& at(DWORD offset) const {
    return *reinterpret_cast<const Type*>(base_ + offset);
  }

  DWORD find(const char* name) const {
    if (place_.VirtualAddress == 0) return 0;
    const auto& directory = at<IMAGE_EXPORT_DIRECTORY>(place_.VirtualAddress);
    for (DWORD i = 0; i < directory.NumberOfNames; ++i) {
      const DWORD text = (&at<DWORD>(directory.AddressOfNames))[i];
      if (std::strcmp(base_ + text, name) != 0) continue;
      const WORD ordinal = (&at<WORD>(directory.AddressOfNameOrdinals))[i];
      return (&at<DWORD>(directory.AddressOfFunctions))[ordinal];
    }
    return 0;
  }

  const char* base_;
  IMAGE_DATA_DIRECTORY place_{};
};

Export Describe(const ExportTable& table, const char* name, bool isThere) {
  std::string state = "missing";
  if (table.has(name)) {
    const std::string target = table.forwarder(name);
    state = target.empty() ? "exported" : "forwarded to " + target;
    if (!isThere) state += ", which is missing";
  }
  return {name, state, isThere};
}

}  // namespace

std::string Engine::load(const std::wstring& path) {
  HMODULE library =
      LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (library == nullptr && GetLastError() == ERROR_INVALID_PARAMETER)
    library = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (library == nullptr) return "cannot be loaded, Windows error " + std::to_string(GetLastError());
  const ExportTable table(library);
#define TAVL_BIND(name)                                                                             \
  name = reinterpret_cast<decltype(name)>(reinterpret_cast<void*>(GetProcAddress(library, #name))); \
  exports_.push_back(Describe(table, #name, name != nullptr));                                      \
  if (name == nullptr) name = Substitute<std::remove_pointer_t<decltype(name)>>(#name);
  TAVL_ENGINE_FUNCTIONS(TAVL_BIND)
#undef TAVL_BIND
  return "";
}

}  // namespace check
