// Files by ANSI path: reading in large pieces, and writing that leaves nothing half-written behind.
// Every failure is an EngineError with the Windows error number.
#pragma once

#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "standin/base/bytes.h"

namespace standin {

/// The size of the pieces in which files are read and written.
constexpr size_t kFilePiece = 1024 * 1024;

/// A HANDLE of CreateFile.
class FileHandle {
 public:
  explicit FileHandle(HANDLE handle = INVALID_HANDLE_VALUE) : handle_(handle) {}
  FileHandle(FileHandle&& other) noexcept : handle_(other.release()) {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~FileHandle() { reset(); }

  HANDLE get() const { return handle_; }
  bool valid() const { return handle_ != INVALID_HANDLE_VALUE; }
  void reset(HANDLE handle = INVALID_HANDLE_VALUE) {
    if (valid()) CloseHandle(handle_);
    handle_ = handle;
  }
  HANDLE release() {
    HANDLE handle = handle_;
    handle_ = INVALID_HANDLE_VALUE;
    return handle;
  }

 private:
  HANDLE handle_;
};

class InputFile {
 public:
  explicit InputFile(const char* path);

  uint64_t size() const { return size_; }
  /// The next piece, valid until the following call; empty at the end of the file.
  ByteView next();
  void close() { handle_.reset(); }

 private:
  FileHandle handle_;
  uint64_t size_;
  Bytes piece_;
};

/// The path, or null if it names the null device: script hosts that cannot pass a null string name no file that way.
/// An empty path is not absent: it names a file that does not exist.
inline const char* Given(const char* path) { return path != nullptr && _stricmp(path, "NUL") != 0 ? path : nullptr; }

/// The whole file, refused when it is longer than `limit`.
Bytes ReadWholeFile(const char* path, uint64_t limit);

/// A file that appears under its name only when `commit` is reached; until then it has a temporary name beside it,
/// and it is deleted when the object goes without a commit.
class OutputFile {
 public:
  explicit OutputFile(const char* path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(ByteView bytes);
  /// Puts `bytes` over what was written at `offset`.
  void overwrite(uint64_t offset, ByteView bytes);
  void commit();

 private:
  void flush();
  void writeThrough(ByteView bytes);

  std::string path_;
  std::string temporary_;
  FileHandle handle_;
  Bytes buffer_;
};

void WriteWholeFile(const char* path, ByteView bytes);

/// The path of no existing file, in the folder of `path`. An empty file is left there to keep the name.
std::string FreeNameBeside(const std::string& path);

/// "folder\name", with one separator.
std::string JoinPath(const std::string& folder, const std::string& name);

/// The names of the files in a folder that fit the pattern; empty when there are none. Fails with kStoreUnreadable when
/// the folder cannot be read.
std::vector<std::string> FilesIn(const std::string& folder, const char* pattern);

}  // namespace standin
