// Reports which files of a folder have changed, without listing it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "standin/base/files.h"

namespace standin {

/// Not for several threads at a time. Nothing is pending between calls, so that any thread may make the next one.
class FolderWatch {
 public:
  explicit FolderWatch(std::string folder) : folder_(std::move(folder)) {}

  /// The names of the files that were added, written, renamed or removed since the last call, by anybody, and perhaps
  /// of others. Nothing if the folder has to be listed: before the first call, when the platform has lost count, and
  /// from time to time.
  std::optional<std::vector<std::string>> changes();
  /// Lets go of the folder. The next call begins anew.
  void stop() { handle_.reset(); }

 private:
  std::string folder_;
  FileHandle handle_;  ///< null if the folder cannot be watched
  uint64_t id_ = 0;
  uint64_t listedAt_ = 0;
};

}  // namespace standin
