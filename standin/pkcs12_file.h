// Reading of PKCS#12 files with any number of keys.
#pragma once

#include <vector>

#include "standin/bytes.h"
#include "standin/openssl_owners.h"

namespace standin {

struct Pkcs12Content {
  std::vector<KeyPtr> keys;
  std::vector<CertPtr> certificates;
};

/// Fails with kWrongPin or kKeyFileDamaged. The PIN is UTF-8.
Pkcs12Content readPkcs12(ByteView der, const std::string& pin);

}  // namespace standin
