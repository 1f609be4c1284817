#include "standin/sessions/folder_cache.h"

#include <algorithm>
#include <list>
#include <unordered_map>

#include "standin/base/codes.h"
#include "standin/base/files.h"
#include "standin/base/lock.h"

namespace standin {
namespace {

/// More folders than one process uses at a time.
constexpr size_t kMostFolders = 4;

struct StoredFile {
  FileEntry entry;
  bool isSettled = false;  ///< whether the content cannot change without the entry
  std::vector<StoredCertificate::Ptr> certificates;
  std::vector<StoredCrl::Ptr> crls;
};
using StoredFilePtr = std::shared_ptr<const StoredFile>;
using StoredFiles = std::vector<StoredFilePtr>;

void AddObject(StoredFile& file, ByteView der, bool& isObject) {
  isObject = true;
  if (auto certificate = StoredCertificate::fromDer(der)) {
    file.certificates.push_back(std::move(certificate));
  } else if (auto crl = StoredCrl::fromDer(der)) {
    file.crls.push_back(std::move(crl));
  } else {
    isObject = RequestFromDer(der) != nullptr;
  }
}

StoredFilePtr ReadFile(const std::string& folder, const FileEntry& entry) {
  auto file = std::make_shared<StoredFile>();
  file->entry = entry;
  try {
    const bool isOld = !entry.wasWrittenJustNow();
    ForEachEncoding(ReadWholeFile(JoinPath(folder, entry.name).c_str(), kLargestObject), [&](ByteView der) {
      bool isObject = false;
      AddObject(*file, der, isObject);
      return isObject;
    });
    file->isSettled = isOld;
  } catch (const EngineError&) {
    // The folder is shared: somebody may be writing or deleting the file.
  }
  return file;
}

/// One folder and what was read of it.
class Folder {
 public:
  explicit Folder(std::string path) : path_(std::move(path)) {}
  const std::string& path() const { return path_; }

  FolderContent content() {
    const std::lock_guard scope(lock_);
    const std::vector<FileEntry> entries = FilesIn(path_, "*");
    const auto isUpToDate = [](const StoredFilePtr& file, const FileEntry& entry) {
      return file->isSettled && file->entry == entry;
    };
    if (!std::ranges::equal(files_, entries, isUpToDate)) take(entries);
    return content_;
  }

 private:
  void take(const std::vector<FileEntry>& entries) {
    std::unordered_map<std::string_view, StoredFilePtr> before;
    for (const StoredFilePtr& file : files_) before.emplace(file->entry.name, file);
    StoredFiles files;
    std::vector<StoredCertificate::Ptr> certificates;
    std::vector<StoredCrl::Ptr> crls;
    for (const FileEntry& entry : entries) {
      const auto found = before.find(entry.name);
      const bool isKept = found != before.end() && found->second->isSettled && found->second->entry == entry;
      files.push_back(isKept ? found->second : ReadFile(path_, entry));
      std::ranges::copy(files.back()->certificates, std::back_inserter(certificates));
      std::ranges::copy(files.back()->crls, std::back_inserter(crls));
    }
    content_ = {std::make_shared<CertCatalog>(std::move(certificates)), std::make_shared<CrlCatalog>(std::move(crls))};
    files_ = std::move(files);
  }

  const std::string path_;
  Lock lock_;
  StoredFiles files_;
  FolderContent content_;
};

struct FolderTable {
  Lock lock;
  std::list<std::shared_ptr<Folder>> folders;  ///< the last used one first
};

/// Not an object of static duration: the process may end while threads use it.
FolderTable& Table() {
  static FolderTable* const kTheTable = new FolderTable;
  return *kTheTable;
}

std::shared_ptr<Folder> FolderAt(const std::string& path) {
  const std::lock_guard scope(Table().lock);
  auto& folders = Table().folders;
  const auto found = std::ranges::find(folders, path, &Folder::path);
  if (found != folders.end()) {
    folders.splice(folders.begin(), folders, found);
  } else {
    folders.push_front(std::make_shared<Folder>(path));
    if (folders.size() > kMostFolders) folders.pop_back();
  }
  return folders.front();
}

}  // namespace

FolderContent ContentOfFolder(const std::string& folder) { return FolderAt(FullPath(folder))->content(); }

void ForgetFolders() { delete &Table(); }

}  // namespace standin
