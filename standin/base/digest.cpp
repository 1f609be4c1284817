#include "standin/base/digest.h"

#include <cctype>
#include <string>

#include "standin/base/codes.h"
#include "standin/base/gost.h"

namespace standin {
namespace {

struct NamedDigest {
  const char* name;  ///< capital letters and digits alone
  const char* oid;
  const EVP_MD* (*algorithm)();
};

constexpr NamedDigest kDigests[] = {
    {"MD5", "1.2.840.113549.2.5", EVP_md5},
    {"SHA1", "1.3.14.3.2.26", EVP_sha1},
    {"SHA224", "2.16.840.1.101.3.4.2.4", EVP_sha224},
    {"SHA256", "2.16.840.1.101.3.4.2.1", EVP_sha256},
    {"SHA384", "2.16.840.1.101.3.4.2.2", EVP_sha384},
    {"SHA512", "2.16.840.1.101.3.4.2.3", EVP_sha512},
    {"SHA3256", "2.16.840.1.101.3.4.2.8", EVP_sha3_256},
    {"SHA3384", "2.16.840.1.101.3.4.2.9", EVP_sha3_384},
    {"SHA3512", "2.16.840.1.101.3.4.2.10", EVP_sha3_512},
    {"MDGOST12256", "1.2.643.7.1.1.2.2", [] { return KnownDigest(NID_id_GostR3411_2012_256); }},
    {"MDGOST12512", "1.2.643.7.1.1.2.3", [] { return KnownDigest(NID_id_GostR3411_2012_512); }},
    {"MDGOST94", "1.2.643.2.2.9", [] { return KnownDigest(NID_id_GostR3411_94); }},
    {"STREEBOG256", "1.2.643.7.1.1.2.2", [] { return KnownDigest(NID_id_GostR3411_2012_256); }},
    {"STREEBOG512", "1.2.643.7.1.1.2.3", [] { return KnownDigest(NID_id_GostR3411_2012_512); }},
};

std::string LettersAndDigits(const std::string& name) {
  std::string kept;
  for (const char c : name) {
    const unsigned char code = static_cast<unsigned char>(c);
    if (std::isalnum(code)) kept += static_cast<char>(std::toupper(code));
  }
  return kept;
}

}  // namespace

Digest::Digest(const EVP_MD* algorithm) : context_(EVP_MD_CTX_new()) {
  if (context_ == nullptr) Fail(kWinOutOfMemory);
  if (EVP_DigestInit_ex(context_.get(), algorithm, nullptr) != 1) Fail(kHashUnknown);
}

void Digest::update(ByteView bytes) {
  if (EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()) != 1) Fail(kInternal);
}

Bytes Digest::finish() {
  Bytes value(EVP_MAX_MD_SIZE);
  unsigned int length = 0;
  if (EVP_DigestFinal_ex(context_.get(), value.data(), &length) != 1) Fail(kInternal);
  value.resize(length);
  return value;
}

Bytes HashOf(ByteView bytes, const EVP_MD* algorithm) {
  Digest digest(algorithm);
  digest.update(bytes);
  return digest.finish();
}

const EVP_MD* DefaultDigest() { return EVP_sha256(); }

const EVP_MD* KnownDigest(int type) {
  const EVP_MD* known = EVP_get_digestbynid(type);
  // What libcrypto itself computes is looked up by name: it may have the digest's name without its code.
  if (known == nullptr || IsGostDigest(type)) return known;
  return DigestPtr(EVP_MD_fetch(nullptr, EVP_MD_get0_name(known), nullptr)) == nullptr ? nullptr : known;
}

const EVP_MD* SignatureDigest(EVP_PKEY* key) {
  constexpr int kMandatory = 2;
  const int type = EVP_PKEY_get_base_id(key);
  const int bits = EVP_PKEY_get_bits(key);
  if (type == EVP_PKEY_EC) return bits <= 256 ? EVP_sha256() : bits <= 384 ? EVP_sha384() : EVP_sha512();
  if (type != EVP_PKEY_RSA && type != EVP_PKEY_RSA_PSS && type != EVP_PKEY_DSA && !IsGostKey(type)) return nullptr;
  int stated = NID_undef;
  return EVP_PKEY_get_default_digest_nid(key, &stated) == kMandatory ? EVP_get_digestbynid(stated) : DefaultDigest();
}

const EVP_MD* DigestByName(const char* name) {
  if (name == nullptr || *name == 0) return DefaultDigest();
  const std::string wanted = LettersAndDigits(name);
  for (const NamedDigest& digest : kDigests) {
    if (wanted == digest.name || std::string(name) == digest.oid) return digest.algorithm();
  }
  Fail(kHashUnknown);
}

}  // namespace standin
