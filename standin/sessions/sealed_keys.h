// Files of keys under a PIN: PKCS#12 with any number of keys, PKCS#8 with one, and PEM texts of these and of
// certificates.
#pragma once

#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

struct KeyFileContent {
  std::vector<KeyPtr> keys;
  std::vector<CertPtr> certificates;
};

/// At least one key. Fails with kWrongPin or kKeyFileDamaged. The PIN is UTF-8.
KeyFileContent ReadKeys(ByteView bytes, const std::string& pin);
Bytes SealKey(EVP_PKEY* key, const std::string& pin);

}  // namespace standin
