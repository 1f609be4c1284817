// The certificate store of a session: a folder with one certificate or revocation list (DER or PEM) per file.
// A self-signed certificate in the folder is a trusted root; policy.txt may change what is admitted and written.
#pragma once

#include <string>
#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"
#include "standin/sessions/folder_cache.h"

namespace standin {

class Store {
 public:
  /// Reads the folder; fails with kStoreUnreadable.
  void open(const std::string& folder);
  bool isOpen() const { return !folder_.empty(); }
  const std::string& folder() const { return folder_; }

  /// Adds certificates as if they were in the folder.
  void addTrusted(const std::vector<CertPtr>& certificates);

  const CertCatalog& certificates() const { return *content_.certificates; }
  const CrlCatalog& crls() const { return *content_.crls; }
  /// The names of the key files in the folder, as the store was opened.
  const std::vector<std::string>& keyFiles() const { return content_.keyFiles; }
  /// The encoded certificate, decoded if the store has not done so; null if the bytes are none.
  CertPtr decoded(ByteView certificate) const;
  /// The lists of any of these issuers, in order.
  std::vector<X509_CRL*> crlsOf(const std::vector<const X509_NAME*>& issuers) const;
  /// The newest list of the same kind, or null.
  X509_CRL* newestLike(const X509_CRL* wanted) const;
  /// Whether policy.txt has the line.
  bool hasPolicy(const std::string& line) const { return policy_.find('\n' + line) != std::string::npos; }

  struct CrlReload {
    size_t lists = 0;
    size_t added = 0;
    size_t outdated = 0;
  };
  CrlReload reloadCrls();

  /// Adds the object to the folder too, unless it is there. Fails with kNoStore without a folder.
  void add(X509* certificate);
  /// Fails with kCrlOlder if the store has a newer list of the same kind, and with kCrlForged if the known issuer has
  /// not signed the list.
  void add(X509_CRL* crl);

 private:
  /// True if the store knows the issuer, and the list verifies with none of its certificates.
  bool isForged(X509_CRL* crl) const;

  std::string folder_;
  FolderContent content_;
  std::string policy_;
};

/// SHA-1 of the DER form, as capital hexadecimal digits: the name of the file of an object.
std::string ThumbprintText(ByteView der);

}  // namespace standin
