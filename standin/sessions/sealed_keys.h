// Keys that are encrypted with a PIN: PKCS#12 files with any number of keys, PKCS#8 files with one.
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

/// The key of a PKCS#8 file; null if the bytes are no key or the PIN is wrong.
KeyPtr ReadSealedKey(ByteView der, const std::string& pin);
Bytes SealKey(EVP_PKEY* key, const std::string& pin);

}  // namespace standin
