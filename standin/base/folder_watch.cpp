#include "standin/base/folder_watch.h"

#include <winternl.h>

#include <algorithm>
#include <atomic>
#include <cstdio>

namespace standin {
namespace {

constexpr DWORD kKindsOfChange = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_SIZE |
                                 FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_CREATION;
/// Longer than the machine needs when it is busy: who waits in vain lists the folder.
constexpr DWORD kLongestWait = 200;
/// Nobody reports what is written to a file by a link elsewhere, or as mapped memory: the list of the folder shows it.
constexpr ULONGLONG kLongestWithoutList = 10'000;

using EventHandle = Owned<CloseHandle>;
using Names = std::vector<std::string>;

/// Null if the folder cannot be opened. Others may still rename and delete it.
FileHandle OpenFolder(const std::string& path) {
  const HANDLE handle =
      CreateFileA(path.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr);
  return FileHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

/// The number of an open folder, which no other has as long as it is open; 0 if it has none. The platform's other
/// functions for it ask for the volume too, which takes longer than all the rest.
uint64_t IdOf(HANDLE folder) {
  constexpr auto kInternalInformation = static_cast<FILE_INFORMATION_CLASS>(6);
  LARGE_INTEGER id{};
  IO_STATUS_BLOCK status{};
  const bool isKnown = NtQueryInformationFile(folder, &status, &id, sizeof id, kInternalInformation) == 0;
  return isKnown ? static_cast<uint64_t>(id.QuadPart) : 0;
}

/// Changes made on other machines are reported late, or never.
bool IsLocal(const std::string& folder) {
  char root[MAX_PATH];
  if (!GetVolumePathNameA(folder.c_str(), root, sizeof root)) return false;
  const UINT kind = GetDriveTypeA(root);
  return kind == DRIVE_FIXED || kind == DRIVE_REMOVABLE || kind == DRIVE_RAMDISK;
}

/// Takes the name of an entry, if the ANSI code page has it.
bool AddName(Names& names, const FILE_NOTIFY_INFORMATION& entry) {
  char name[MAX_PATH * 2];
  BOOL isReplaced = FALSE;
  const int length = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, entry.FileName,
                                         static_cast<int>(entry.FileNameLength / sizeof(WCHAR)), name, sizeof name,
                                         nullptr, &isReplaced);
  if (length <= 0 || isReplaced) return false;
  names.emplace_back(name, static_cast<size_t>(length));
  return true;
}

/// What is reported of a folder within `milliseconds`, first of all what was kept since the last call. Nothing if some
/// was lost.
std::optional<Names> Reported(HANDLE folder, DWORD kinds, DWORD milliseconds) {
  std::vector<DWORD> buffer(16 * 1024);
  const EventHandle event(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  OVERLAPPED request{};
  request.hEvent = event.get();
  const DWORD size = static_cast<DWORD>(buffer.size() * sizeof(DWORD));
  if (event == nullptr ||
      !ReadDirectoryChangesW(folder, buffer.data(), size, FALSE, kinds, nullptr, &request, nullptr)) {
    return std::nullopt;
  }
  if (WaitForSingleObject(event.get(), milliseconds) != WAIT_OBJECT_0) CancelIo(folder);
  DWORD length = 0;
  Names names;
  if (!GetOverlappedResult(folder, &request, &length, TRUE)) {
    return GetLastError() == ERROR_OPERATION_ABORTED ? std::optional(names) : std::nullopt;
  }
  if (length == 0) return std::nullopt;
  const auto* bytes = reinterpret_cast<const char*>(buffer.data());
  for (DWORD next = 1; next != 0;) {
    const auto& entry = *reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(bytes);
    if (!AddName(names, entry)) return std::nullopt;
    next = entry.NextEntryOffset;
    bytes += next;
  }
  return names;
}

/// Waits until all that has happened is reported. It may be reported late, but in order: a file that is made now is
/// reported after all before it.
bool WaitForReports() {
  static std::atomic<unsigned> last = 0;
  char path[MAX_PATH + 1];
  const DWORD length = GetTempPathA(sizeof path, path);
  if (length == 0 || length > MAX_PATH) return false;
  const FileHandle folder = OpenFolder(path);
  if (folder == nullptr || !Reported(folder.get(), FILE_NOTIFY_CHANGE_FILE_NAME, 0)) return false;
  char name[32];
  std::snprintf(name, sizeof name, "~t%08lx%08x.tmp", static_cast<unsigned long>(GetCurrentProcessId()), ++last);
  const HANDLE file =
      CreateFileA(JoinPath(path, name).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const FileHandle owner(file);
  const ULONGLONG end = GetTickCount64() + kLongestWait;
  do {
    const std::optional<Names> names = Reported(folder.get(), FILE_NOTIFY_CHANGE_FILE_NAME, kLongestWait);
    if (!names) return false;
    if (std::ranges::find(*names, name) != names->end()) return true;
  } while (GetTickCount64() < end);
  return false;
}

}  // namespace

std::optional<Names> FolderWatch::changes() {
  FileHandle folder = OpenFolder(folder_);
  if (handle_ != nullptr && folder != nullptr && IdOf(folder.get()) == id_) {
    if (!WaitForReports()) return std::nullopt;
    std::optional<Names> names = Reported(handle_.get(), kKindsOfChange, 0);
    const ULONGLONG now = GetTickCount64();
    if (names && now - listedAt_ < kLongestWithoutList) return names;
    listedAt_ = now;
    return std::nullopt;
  }
  // Another folder has the path now, if any.
  handle_.reset();
  listedAt_ = GetTickCount64();
  if (folder == nullptr || !IsLocal(folder_)) return std::nullopt;
  id_ = IdOf(folder.get());
  if (id_ != 0 && Reported(folder.get(), kKindsOfChange, 0)) handle_ = std::move(folder);
  return std::nullopt;
}

}  // namespace standin
