// The caller's own keys: those of a PKCS#12 file with the certificates that belong to them.
#pragma once

#include <string>
#include <vector>

#include "engine/records.h"
#include "standin/openssl_owners.h"

namespace standin {

struct OwnKey {
  CertPtr certificate;
  KeyPtr key;
};

/// What an own key is wanted for; it decides between several when the caller names none.
enum class KeyPurpose { kSigning, kDecryption, kAny };

class KeyStore {
 public:
  /// Fails with kKeyFileMissing, kWrongPin or kKeyFileDamaged. The PIN is ANSI.
  void open(const std::string& path, const std::string& pin);

  const std::vector<OwnKey>& own() const { return own_; }
  bool owns(const X509* certificate) const;
  /// The file's certificates that belong to none of its keys.
  const std::vector<CertPtr>& chainCertificates() const { return chain_; }

  /// The own key of the certificate that `id` names; a null `id`, or one whose type has not been chosen, stands for the
  /// one that suits the purpose best. Fails with kOwnCertificateNotFound.
  const OwnKey& pick(const CertIdRecord* id, KeyPurpose purpose) const;

 private:
  std::vector<OwnKey> own_;
  std::vector<CertPtr> chain_;
};

}  // namespace standin
