// The caller's own keys: those of a PKCS#12 file, those that were made for requests, and the certificates that belong
// to them.
#pragma once

#include <string>
#include <vector>

#include "standin/base/contract.h"
#include "standin/base/openssl_owners.h"

namespace standin {

struct OwnKey {
  CertPtr certificate;
  KeyPtr key;
};

/// What an own key is wanted for; it decides between several when the caller names none.
enum class KeyPurpose { kSigning, kDecryption, kAny };

class KeyStore {
 public:
  KeyStore() = default;
  ~KeyStore();
  KeyStore(const KeyStore&) = delete;
  KeyStore& operator=(const KeyStore&) = delete;

  /// The PIN, ANSI, with which everything here is sealed.
  void setPin(const std::string& pin);
  /// Reads a PKCS#12 file. Fails with kKeyFileMissing, kWrongPin or kKeyFileDamaged.
  void open(const std::string& path);
  /// Reads the keys that were kept in a folder; those under another PIN are passed over.
  void openFolder(const std::string& folder);
  /// Seals a new key into the folder.
  void keep(EVP_PKEY* key, const std::string& folder, const std::string& name);

  bool hasKeyOf(X509* certificate) const { return keyOf(certificate) != nullptr; }
  /// Takes a certificate for an own one when there is a key for it.
  void adopt(X509* certificate);

  const std::vector<OwnKey>& own() const { return own_; }
  bool owns(const X509* certificate) const;
  /// The file's certificates that belong to none of its keys.
  const std::vector<CertPtr>& chainCertificates() const { return chain_; }

  /// The own key of the certificate that `id` names; a null `id`, or one whose type has not been chosen, stands for the
  /// one that suits the purpose best. Fails with kOwnCertificateNotFound.
  const OwnKey& pick(const CertIdRecord* id, KeyPurpose purpose) const;

 private:
  EVP_PKEY* keyOf(X509* certificate) const;

  std::string pin_;  ///< UTF-8
  std::vector<KeyPtr> keys_;
  std::vector<OwnKey> own_;
  std::vector<CertPtr> chain_;
};

}  // namespace standin
