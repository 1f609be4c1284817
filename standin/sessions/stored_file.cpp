#include "standin/sessions/stored_file.h"

#include "standin/base/codes.h"

namespace standin {
namespace {

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

}  // namespace

StoredFilePtr ReadStoredFile(const std::string& folder, const FileEntry& entry) {
  auto file = std::make_shared<StoredFile>();
  file->entry = entry;
  try {
    const bool isOld = !entry.wasWrittenJustNow();
    // Who writes it may have it open still; if he writes more, that is a change again.
    constexpr bool kMayBeWritten = true;
    const Bytes content = ReadWholeFile(JoinPath(folder, entry.name).c_str(), kLargestObject, kMayBeWritten);
    ForEachEncoding(content, [&](ByteView der) {
      bool isObject = false;
      AddObject(*file, der, isObject);
      return isObject;
    });
    file->isRead = true;
    file->isSettled = isOld;
  } catch (const EngineError&) {
    // The folder is shared: somebody may be writing or deleting the file.
  }
  return file;
}

}  // namespace standin
