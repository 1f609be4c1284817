// Files by ANSI path: read in large pieces, written whole or not at all.
// Every failure is an EngineError with the Windows error number.
#pragma once

#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/owned.h"

namespace standin {

/// The size of the pieces in which files are read and written.
constexpr size_t kFilePiece = 1024 * 1024;

using FileHandle = Owned<CloseHandle>;

class InputFile {
 public:
  /// Others may write to the file meanwhile only with `mayBeWritten`.
  explicit InputFile(const char* path, bool mayBeWritten = false);

  uint64_t size() const { return size_; }
  /// Calls `take` with the file, piece by piece, and closes it.
  template <typename Take>
  void forEachPiece(Take take) {
    for (ByteView piece = next(); !piece.empty(); piece = next()) take(piece);
    handle_.reset();
  }

 private:
  ByteView next();

  FileHandle handle_;
  uint64_t size_;
  Bytes piece_;
};

/// The path; null if it is the null device, which script hosts pass where they cannot pass a null string. An empty path
/// stays: it names a file that does not exist.
inline const char* Given(const char* path) { return path != nullptr && _stricmp(path, "NUL") != 0 ? path : nullptr; }

/// Fails with kTooLarge if the file is longer than `limit`.
Bytes ReadWholeFile(const char* path, uint64_t limit, bool mayBeWritten = false);

/// A file with a temporary name in the folder of `path`. `commit` gives it its name; without a commit it is deleted.
class OutputFile {
 public:
  explicit OutputFile(const char* path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(ByteView bytes);
  /// Replaces what was written at `offset`.
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

/// The absolute form of a path.
std::string FullPath(const std::string& path);

/// A file as its folder lists it. Times are in units of 100 nanoseconds.
struct FileEntry {
  std::string name;
  uint64_t size = 0;
  uint64_t created = 0;
  uint64_t written = 0;

  bool operator==(const FileEntry&) const = default;
  /// Whether the name has the ending, in capital letters or not.
  bool endsWith(const std::string& ending) const {
    return name.size() >= ending.size() && _stricmp(name.c_str() + name.size() - ending.size(), ending.c_str()) == 0;
  }
  /// Whether the file may be written once more without another time: file systems keep times by two seconds.
  bool wasWrittenJustNow() const;
};

/// The files in a folder that fit the pattern, without temporary ones of OutputFile. Fails with kStoreUnreadable if the
/// folder cannot be read.
std::vector<FileEntry> FilesIn(const std::string& folder, const char* pattern);

}  // namespace standin
