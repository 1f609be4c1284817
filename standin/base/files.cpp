#include "standin/base/files.h"

#include <algorithm>
#include <cstdio>

#include "standin/base/codes.h"

namespace standin {
namespace {

/// Null if the file cannot be opened.
FileHandle Open(const char* path, DWORD access, DWORD share, DWORD creation, DWORD flags) {
  const HANDLE handle = CreateFileA(path, access, share, nullptr, creation, flags, nullptr);
  return FileHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

uint64_t Ticks(FILETIME time) { return static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime; }

/// Whether a file has a name of CreateBeside: it is being written, or who wrote it was ended.
bool IsTemporary(const std::string& name) {
  return name.size() == std::strlen("~t00000000.tmp") && name.starts_with("~t") && name.ends_with(".tmp");
}

/// Fails for the name of a stream in a file: the temporary file beside it would be a stream too, and could not become
/// it.
void RequireNoStream(const std::string& path) {
  const bool isPrefixed = path.starts_with("\\\\?\\") || path.starts_with("\\\\.\\");
  const size_t drive = isPrefixed ? 4 : 0;
  const size_t rest = path.size() > drive + 1 && path[drive + 1] == ':' ? drive + 2 : drive;
  if (path.find(':', rest) != std::string::npos) Fail(ERROR_INVALID_NAME);
}

/// A new file with a free name in the folder of `path`.
FileHandle CreateBeside(const std::string& path, std::string& name) {
  RequireNoStream(path);
  const size_t folderLength = path.find_last_of("\\/:") + 1;
  for (unsigned attempt = 0; attempt < 100; ++attempt) {
    char leaf[32];
    std::snprintf(leaf, sizeof leaf, "~t%08lx.tmp",
                  static_cast<unsigned long>(GetTickCount() ^ (GetCurrentThreadId() << 16) ^ (attempt * 0x9E3779B9u)));
    name = path.substr(0, folderLength) + leaf;
    FileHandle handle = Open(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
    if (handle != nullptr) return handle;
    if (GetLastError() != ERROR_FILE_EXISTS) FailWithLastError();
  }
  Fail(ERROR_FILE_EXISTS);
}

}  // namespace

InputFile::InputFile(const char* path, bool mayBeWritten) {
  if (path == nullptr) Fail(kWinInvalidParameter);
  const DWORD share = FILE_SHARE_READ | FILE_SHARE_DELETE | (mayBeWritten ? FILE_SHARE_WRITE : 0);
  handle_ = Open(path, GENERIC_READ, share, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
  if (handle_ == nullptr) FailWithLastError();
  // A device or a pipe may never come to an end, or never begin.
  if (GetFileType(handle_.get()) != FILE_TYPE_DISK) Fail(ERROR_BAD_PATHNAME);
  LARGE_INTEGER size;
  if (!GetFileSizeEx(handle_.get(), &size)) FailWithLastError();
  size_ = static_cast<uint64_t>(size.QuadPart);
}

ByteView InputFile::next() {
  if (piece_.empty()) piece_.resize(static_cast<size_t>(std::clamp<uint64_t>(size_, 1, kFilePiece)));
  DWORD read = 0;
  if (!ReadFile(handle_.get(), piece_.data(), static_cast<DWORD>(piece_.size()), &read, nullptr)) FailWithLastError();
  return {piece_.data(), read};
}

Bytes ReadWholeFile(const char* path, uint64_t limit, bool mayBeWritten) {
  InputFile file(path, mayBeWritten);
  if (file.size() > limit) Fail(kTooLarge);
  Bytes bytes;
  bytes.reserve(static_cast<size_t>(file.size()));
  file.forEachPiece([&](ByteView piece) {
    Append(bytes, piece);
    if (bytes.size() > limit) Fail(kTooLarge);
  });
  return bytes;
}

OutputFile::OutputFile(const char* path) {
  if (path == nullptr || *path == 0) Fail(kWinInvalidParameter);
  path_ = path;
  // Otherwise a folder or a read-only file of that name would fail the commit, after all the work.
  const DWORD attributes = GetFileAttributesA(path);
  if (attributes != INVALID_FILE_ATTRIBUTES &&
      (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) {
    Fail(ERROR_ACCESS_DENIED);
  }
  handle_ = CreateBeside(path_, temporary_);
}

OutputFile::~OutputFile() {
  if (temporary_.empty()) return;
  handle_.reset();
  DeleteFileA(temporary_.c_str());
}

void OutputFile::write(ByteView bytes) {
  if (buffer_.size() + bytes.size() > kFilePiece) flush();
  if (bytes.size() >= kFilePiece) {
    writeThrough(bytes);
  } else {
    Append(buffer_, bytes);
  }
}

void OutputFile::overwrite(uint64_t offset, ByteView bytes) {
  flush();
  LARGE_INTEGER position;
  position.QuadPart = static_cast<LONGLONG>(offset);
  if (!SetFilePointerEx(handle_.get(), position, nullptr, FILE_BEGIN)) FailWithLastError();
  writeThrough(bytes);
  if (!SetFilePointerEx(handle_.get(), LARGE_INTEGER{}, nullptr, FILE_END)) FailWithLastError();
}

void OutputFile::commit() {
  flush();
  handle_.reset();
  if (!MoveFileExA(temporary_.c_str(), path_.c_str(), MOVEFILE_REPLACE_EXISTING)) FailWithLastError();
  temporary_.clear();
}

void OutputFile::flush() {
  writeThrough(buffer_);
  buffer_.clear();
}

void OutputFile::writeThrough(ByteView bytes) {
  while (!bytes.empty()) {
    const DWORD wanted = static_cast<DWORD>(std::min<size_t>(bytes.size(), 64 * kFilePiece));
    DWORD written = 0;
    if (!WriteFile(handle_.get(), bytes.data(), wanted, &written, nullptr)) FailWithLastError();
    if (written == 0) Fail(kWinDiskFull);
    bytes = bytes.subspan(written);
  }
}

std::string FreeNameBeside(const std::string& path) {
  std::string name;
  CreateBeside(path, name);
  return name;
}

void WriteWholeFile(const char* path, ByteView bytes) {
  OutputFile file(path);
  file.write(bytes);
  file.commit();
}

std::string JoinPath(const std::string& folder, const std::string& name) {
  if (folder.empty()) return name;
  const char last = folder.back();
  return last == '\\' || last == '/' ? folder + name : folder + '\\' + name;
}

std::string FullPath(const std::string& path) {
  std::string full(MAX_PATH, '\0');
  DWORD length = GetFullPathNameA(path.c_str(), MAX_PATH, full.data(), nullptr);
  if (length > full.size()) {
    full.resize(length);
    length = GetFullPathNameA(path.c_str(), length, full.data(), nullptr);
  }
  full.resize(length);
  return full;
}

bool FileEntry::wasWrittenJustNow() const {
  constexpr uint64_t kThreeSeconds = 30'000'000;
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  const uint64_t now = Ticks(time);
  return (now > written ? now - written : written - now) < kThreeSeconds;
}

std::vector<FileEntry> FilesIn(const std::string& folder, const char* pattern) {
  WIN32_FIND_DATAA found{};
  const HANDLE search = FindFirstFileA(JoinPath(folder, pattern).c_str(), &found);
  std::vector<FileEntry> files;
  if (search == INVALID_HANDLE_VALUE) {
    if (GetLastError() == ERROR_FILE_NOT_FOUND) return files;
    Fail(kStoreUnreadable);
  }
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 || IsTemporary(found.cFileName)) continue;
    const uint64_t size = static_cast<uint64_t>(found.nFileSizeHigh) << 32 | found.nFileSizeLow;
    files.push_back({found.cFileName, size, Ticks(found.ftCreationTime), Ticks(found.ftLastWriteTime)});
  } while (FindNextFileA(search, &found));
  FindClose(search);
  return files;
}

}  // namespace standin
