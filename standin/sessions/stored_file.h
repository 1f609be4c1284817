// A file of a store's folder and the objects in it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "standin/base/files.h"
#include "standin/certificates/stored_object.h"

namespace standin {

struct StoredFile {
  FileEntry entry;
  bool isRead = false;
  bool isSettled = false;  ///< whether the content that was read cannot change without the entry
  std::vector<StoredCertificate::Ptr> certificates;
  std::vector<StoredCrl::Ptr> crls;
};
using StoredFilePtr = std::shared_ptr<const StoredFile>;
using StoredFiles = std::vector<StoredFilePtr>;

/// A file that cannot be read has no objects.
StoredFilePtr ReadStoredFile(const std::string& folder, const FileEntry& entry);

}  // namespace standin
