// Reading of keys that are sealed with a PIN: PKCS#12 files with any number of them, and single PKCS#8 files.
#pragma once

#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

struct Pkcs12Content {
  std::vector<KeyPtr> keys;
  std::vector<CertPtr> certificates;
};

/// Fails with kWrongPin or kKeyFileDamaged. The PIN is UTF-8.
Pkcs12Content ReadPkcs12(ByteView der, const std::string& pin);

/// A single key; null when the bytes are none or the PIN is another.
KeyPtr ReadSealedKey(ByteView der, const std::string& pin);
/// The sealed form of a key.
Bytes SealKey(EVP_PKEY* key, const std::string& pin);

}  // namespace standin
