#include "engine/library.h"

#include <delayimp.h>

#include <atomic>
#include <cwchar>
#include <memory>
#include <new>

// What the delayed import of the engine consists of: made by the linker, as is the start of the module.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" const ImgDelayDescr __DELAY_IMPORT_DESCRIPTOR_libtavl1_delayed_a;
extern "C" BYTE __ImageBase[];  // NOLINT(readability-identifier-naming,bugprone-reserved-identifier)

namespace engine {
namespace {

constexpr const ImgDelayDescr& kImport = __DELAY_IMPORT_DESCRIPTOR_libtavl1_delayed_a;
constexpr size_t kLongestPath = 32768;
constexpr wchar_t kName[] = L"\\tavl1.dll";

SRWLOCK lock = SRWLOCK_INIT;
std::atomic<HMODULE> library;
const char* missing;

template <class Type>
Type* At(DWORD offset) {
  return reinterpret_cast<Type*>(__ImageBase + offset);
}

/// The result of the platform function that has just failed.
HRESULT LastFailure() { return HRESULT_FROM_WIN32(GetLastError()); }

/// One try to find the engine.
class Search {
 public:
  /// S_FALSE if none of the folders has an engine.
  HRESULT run(HMODULE* found) {
    DWORD length = GetModuleFileNameW(reinterpret_cast<HMODULE>(__ImageBase), path_, kLongestPath);
    const wchar_t* name = length < kLongestPath ? std::wcsrchr(path_, L'\\') : nullptr;
    HRESULT hr = name ? loadFrom(path_, static_cast<size_t>(name - path_), found) : S_FALSE;
    if (hr != S_FALSE) return hr;
    length = GetSystemDirectoryW(folders_, kLongestPath);
    if (length < kLongestPath) hr = loadFrom(folders_, length, found);
    if (hr != S_FALSE) return hr;
    length = GetEnvironmentVariableW(L"PATH", folders_, kLongestPath);
    if (length >= kLongestPath) return S_FALSE;
    if (length == 0) folders_[0] = 0;
    for (const wchar_t* folder = folders_; hr == S_FALSE && *folder; folder += *folder == L';') {
      const size_t size = std::wcscspn(folder, L";");
      if (isAbsolute(folder)) hr = loadFrom(folder, size, found);
      folder += size;
    }
    return hr;
  }

 private:
  /// Neither relative to the current folder nor to the current drive.
  static bool isAbsolute(const wchar_t* folder) {
    auto isSeparator = [](wchar_t letter) { return letter == L'\\' || letter == L'/'; };
    if (isSeparator(folder[0])) return isSeparator(folder[1]);
    return folder[0] != 0 && folder[1] == L':' && isSeparator(folder[2]);
  }

  /// S_FALSE if there is no engine in the folder.
  HRESULT loadFrom(const wchar_t* folder, size_t length, HMODULE* found) {
    if (length == 0 || length + std::size(kName) > kLongestPath) return S_FALSE;
    std::wmemmove(path_, folder, length);
    std::wmemcpy(path_ + length, kName, std::size(kName));
    if (GetFileAttributesW(path_) == INVALID_FILE_ATTRIBUTES) return S_FALSE;
    // What the engine itself needs comes from its own folder and the system's, as far as the platform knows how.
    *found = LoadLibraryExW(path_, nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (!*found && GetLastError() == ERROR_INVALID_PARAMETER)
      *found = LoadLibraryExW(path_, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    return *found ? S_OK : LastFailure();
  }

  wchar_t path_[kLongestPath];
  wchar_t folders_[kLongestPath];
};

HRESULT Find(HMODULE* found) {
  std::unique_ptr<Search> search(new (std::nothrow) Search);
  if (!search) return E_OUTOFMEMORY;
  HRESULT hr = search->run(found);
  return hr == S_FALSE ? HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND) : hr;
}

/// All functions or none.
HRESULT Bind(HMODULE found) {
  const auto* names = At<const IMAGE_THUNK_DATA>(kImport.rvaINT);
  auto* functions = At<FARPROC>(kImport.rvaIAT);
  auto functionAt = [&](size_t i) {
    const char* name = At<IMAGE_IMPORT_BY_NAME>(static_cast<DWORD>(names[i].u1.AddressOfData))->Name;
    FARPROC function = GetProcAddress(found, name);
    if (!function) missing = name;
    return function;
  };
  size_t count = 0;
  for (; names[count].u1.AddressOfData != 0; ++count)
    if (!functionAt(count)) return LastFailure();
  // Newer linkers write-protect the table.
  DWORD protection = 0;
  if (!VirtualProtect(functions, count * sizeof(*functions), PAGE_READWRITE, &protection)) return LastFailure();
  for (size_t i = 0; i < count; ++i) functions[i] = functionAt(i);
  VirtualProtect(functions, count * sizeof(*functions), protection, &protection);
  return S_OK;
}

}  // namespace

HRESULT Load() {
  if (library) return S_OK;
  AcquireSRWLockExclusive(&lock);
  HRESULT hr = S_OK;
  if (!library) {
    missing = nullptr;
    HMODULE found = nullptr;
    hr = Find(&found);
    if (SUCCEEDED(hr)) hr = Bind(found);
    if (SUCCEEDED(hr)) library = found;
    if (FAILED(hr) && found) FreeLibrary(found);
  }
  ReleaseSRWLockExclusive(&lock);
  return hr;
}

const char* MissingFunction() { return missing; }

void Unload() {
  if (HMODULE loaded = library.exchange(nullptr)) FreeLibrary(loaded);
}

}  // namespace engine

/// Runs if a function of the engine is called before it is bound. The toolchain's own would search the current folder.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" FARPROC WINAPI __delayLoadHelper2(PCImgDelayDescr, FARPROC* function) {
  if (FAILED(engine::Load())) RaiseException(ERROR_MOD_NOT_FOUND, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  return *function;
}
