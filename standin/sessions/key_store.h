// The own keys of a session, from a PKCS#12 file and from requests, with their certificates.
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

/// The use for which an own key is picked if the caller names none.
enum class KeyPurpose { kSigning, kDecryption, kAny };

class KeyStore {
 public:
  KeyStore() = default;
  ~KeyStore();
  KeyStore(const KeyStore&) = delete;
  KeyStore& operator=(const KeyStore&) = delete;

  /// The PIN (ANSI) of all keys.
  void setPin(const std::string& pin);
  /// Reads a PKCS#12 file. Fails with kKeyFileMissing, kWrongPin or kKeyFileDamaged.
  void open(const std::string& path);
  /// Reads these files of a folder; skips those with another PIN.
  void openFiles(const std::string& folder, const std::vector<std::string>& names);
  /// Writes a new key into the folder, encrypted with the PIN.
  void keep(EVP_PKEY* key, const std::string& folder, const std::string& name);

  const std::vector<KeyPtr>& keys() const { return keys_; }
  bool hasKeyOf(X509* certificate) const { return keyOf(certificate) != nullptr; }
  /// Makes the certificate an own one if there is a key for it.
  void adopt(X509* certificate);

  const std::vector<OwnKey>& own() const { return own_; }
  bool owns(const X509* certificate) const;
  /// The certificates of the PKCS#12 file without a key.
  const std::vector<CertPtr>& chainCertificates() const { return chain_; }

  /// The own key of the certificate that `id` names; if it names none, the one that suits the purpose best. Fails with
  /// kOwnCertificateNotFound.
  const OwnKey& pick(const CertIdRecord* id, KeyPurpose purpose) const;

 private:
  EVP_PKEY* keyOf(X509* certificate) const;

  std::string pin_;  ///< UTF-8
  std::vector<KeyPtr> keys_;
  std::vector<OwnKey> own_;
  std::vector<CertPtr> chain_;
};

}  // namespace standin
