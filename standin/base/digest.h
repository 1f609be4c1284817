// Hashing: one running digest, and the algorithms by name.
#pragma once

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

class Digest {
 public:
  explicit Digest(const EVP_MD* algorithm);
  void update(ByteView bytes);
  /// The hash; nothing can be added afterwards.
  Bytes finish();

 private:
  DigestContextPtr context_;
};

Bytes HashOf(ByteView bytes, const EVP_MD* algorithm);

/// The algorithm where the caller names none.
const EVP_MD* DefaultDigest();
/// Null if libcrypto cannot compute the digest.
const EVP_MD* KnownDigest(int type);
/// The digest that fits the strength of a key that signs; null if keys of its kind do not sign a digest.
const EVP_MD* SignatureDigest(EVP_PKEY* key);
/// MD5, SHA-1, SHA-224, SHA-256, SHA-384, SHA-512, SHA3-256, SHA3-384, SHA3-512 and, as md_gost12_256, md_gost12_512
/// and md_gost94, GOST R 34.11; with or without hyphens, in any case, or their object identifiers. Null or an empty
/// name is the default. Fails with kHashUnknown.
const EVP_MD* DigestByName(const char* name);

}  // namespace standin
