// What the files of a store's folder contain. The process keeps it for the sessions to come: a file is read again only
// if the platform reports a change, or its size or its times are others.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "standin/certificates/catalog.h"

namespace standin {

using CertCatalog = Catalog<X509>;
using CrlCatalog = Catalog<X509_CRL>;

/// What may change what is admitted and written.
constexpr char kPolicyFile[] = "policy.txt";

/// Shared by sessions: only a copy may be changed.
struct FolderContent {
  std::shared_ptr<CertCatalog> certificates = std::make_shared<CertCatalog>();
  std::shared_ptr<CrlCatalog> crls = std::make_shared<CrlCatalog>();
  std::vector<std::string> keyFiles;  ///< the names that end with ".key"
  bool hasPolicy = false;             ///< whether there is a kPolicyFile
};

/// The objects in the files of the folder, as they are now. Fails with kStoreUnreadable.
FolderContent ContentOfFolder(const std::string& folder);

/// Frees what is kept, before the library is unloaded.
void ForgetFolders();

}  // namespace standin
