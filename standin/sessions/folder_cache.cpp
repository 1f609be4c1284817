#include "standin/sessions/folder_cache.h"

#include <algorithm>
#include <list>
#include <set>
#include <span>
#include <unordered_map>

#include "standin/base/folder_watch.h"
#include "standin/base/lock.h"
#include "standin/sessions/stored_file.h"

namespace standin {
namespace {

/// More folders than one process uses at a time.
constexpr size_t kMostFolders = 4;

/// More files or objects are read or sorted anew in less time than one by one.
constexpr size_t kMostSingle = 64;

template <typename Object, typename Ptr>
void AddTo(std::shared_ptr<Catalog<Object>>& catalog, const std::vector<Ptr>& objects) {
  if (objects.empty()) return;
  catalog = std::make_shared<Catalog<Object>>(*catalog);
  for (const Ptr& object : objects) catalog->add(object);
}

/// Everything that is in some files.
struct Objects {
  explicit Objects(std::span<const StoredFilePtr> files) {
    for (const StoredFilePtr& file : files) {
      std::ranges::copy(file->certificates, std::back_inserter(certificates));
      std::ranges::copy(file->crls, std::back_inserter(crls));
      if (!file->isRead) unread.push_back(file->entry.name);
      if (file->entry.endsWith(".key")) keyFiles.push_back(file->entry.name);
      hasPolicy = hasPolicy || _stricmp(file->entry.name.c_str(), kPolicyFile) == 0;
    }
  }

  std::vector<StoredCertificate::Ptr> certificates;
  std::vector<StoredCrl::Ptr> crls;
  std::vector<std::string> keyFiles;
  bool hasPolicy = false;
  std::vector<std::string> unread;  ///< the names of files that could not be read
};

/// One folder and what was read of it.
class Folder {
 public:
  explicit Folder(std::string path) : path_(std::move(path)), watch_(path_) {}
  const std::string& path() const { return path_; }

  FolderContent content() {
    const std::lock_guard scope(lock_);
    // Asked in any case, and first: what happens while the folder is listed is reported the next time.
    const std::optional<Names> changes = watch_.changes();
    const bool isKnown = std::exchange(isKnown_, false);  // what was reported is lost if this fails
    if (!isKnown || !changes || !update(*changes)) list();
    if (files_.empty()) {
      // Perhaps it has been deleted, and stays as long as it is watched.
      watch_.stop();
      list();
    }
    isKnown_ = true;
    return content_;
  }

 private:
  using Names = std::vector<std::string>;

  void list() {
    const std::vector<FileEntry> entries = FilesIn(path_, "*");
    const auto isUpToDate = [](const StoredFilePtr& file, const FileEntry& entry) {
      return file->isSettled && file->entry == entry;
    };
    if (!std::ranges::equal(files_, entries, isUpToDate)) take(entries);
  }

  void take(const std::vector<FileEntry>& entries) {
    std::unordered_map<std::string_view, StoredFilePtr> before;
    for (const StoredFilePtr& file : files_) before.emplace(file->entry.name, file);
    StoredFiles files;
    for (const FileEntry& entry : entries) {
      const auto found = before.find(entry.name);
      const bool isKept = found != before.end() && found->second->isSettled && found->second->entry == entry;
      files.push_back(isKept ? found->second : ReadStoredFile(path_, entry));
    }
    keep(std::move(files));
  }

  /// Reads the files of these names again, and those that could not be read. False if they are too many.
  bool update(const Names& changes) {
    std::set<std::string> names(changes.begin(), changes.end());
    names.insert(unread_.begin(), unread_.end());
    if (names.size() > kMostSingle) return false;
    if (names.empty()) return true;
    StoredFiles files = files_;
    for (const std::string& name : names) {
      const std::vector<FileEntry> found = FilesIn(path_, name.c_str());
      const auto known = std::ranges::find_if(files, [&](const auto& file) { return file->entry.name == name; });
      // The name is a pattern, or a short one.
      if (!found.empty() && (found.size() > 1 || found[0].name != name)) return false;
      if (found.empty()) {
        if (known != files.end()) files.erase(known);
      } else if (known != files.end()) {
        *known = ReadStoredFile(path_, found[0]);
      } else {
        files.push_back(ReadStoredFile(path_, found[0]));
      }
    }
    keep(std::move(files));
    return true;
  }

  void keep(StoredFiles files) {
    const size_t before = files_.size();
    const bool isLonger = files.size() >= before && std::equal(files_.begin(), files_.end(), files.begin());
    const Objects added{std::span<const StoredFilePtr>(files).subspan(isLonger ? before : 0)};
    if (isLonger && added.certificates.size() + added.crls.size() <= kMostSingle) {
      AddTo(content_.certificates, added.certificates);
      AddTo(content_.crls, added.crls);
      std::ranges::copy(added.keyFiles, std::back_inserter(content_.keyFiles));
      content_.hasPolicy = content_.hasPolicy || added.hasPolicy;
      std::ranges::copy(added.unread, std::back_inserter(unread_));
    } else {
      Objects all{files};
      content_ = {std::make_shared<CertCatalog>(std::move(all.certificates)),
                  std::make_shared<CrlCatalog>(std::move(all.crls)), std::move(all.keyFiles), all.hasPolicy};
      unread_ = std::move(all.unread);
    }
    files_ = std::move(files);
  }

  const std::string path_;
  FolderWatch watch_;
  Lock lock_;
  StoredFiles files_;
  std::vector<std::string> unread_;
  FolderContent content_;
  bool isKnown_ = false;  ///< whether the content is that of the folder but for the changes that the watch reports
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
