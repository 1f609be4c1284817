// The block ciphers against the examples of GOST R 34.12-2015 and GOST R 34.13-2015, appendix A, in the libraries that
// the stand-in links.
#include <gtest/gtest.h>
#include <openssl/engine.h>
#include <openssl/evp.h>

#include <string>

extern "C" {
#include <gost-engine.h>
}

namespace {

using Bytes = std::vector<unsigned char>;

Bytes FromHex(const std::string& digits) {
  Bytes bytes;
  for (size_t i = 0; i < digits.size(); i += 2) {
    bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

struct Example {
  int cipher;
  const char* name;
  const char* key;
  const char* iv;
  const char* plain;
  const char* ciphertext;
};

constexpr char kKuznyechikKey[] = "8899aabbccddeeff0011223344556677fedcba98765432100123456789abcdef";
constexpr char kMagmaKey[] = "ffeeddccbbaa99887766554433221100f0f1f2f3f4f5f6f7f8f9fafbfcfdfeff";
constexpr char kKuznyechikText[] =
    "1122334455667700ffeeddccbbaa998800112233445566778899aabbcceeff0a112233445566778899aabbcceeff0a00"
    "2233445566778899aabbcceeff0a0011";
constexpr char kMagmaText[] = "92def06b3c130a59db54c704f8189d204a98fb2e67a8024c8912409b17b57e41";

constexpr Example kExamples[] = {
    {NID_kuznyechik_ecb, "Kuznyechik", kKuznyechikKey, "", "1122334455667700ffeeddccbbaa9988",
     "7f679d90bebc24305a468d42b9d4edcd"},
    {NID_kuznyechik_ctr, "Kuznyechik, counter", kKuznyechikKey, "1234567890abcef0", kKuznyechikText,
     "f195d8bec10ed1dbd57b5fa240bda1b885eee733f6a13e5df33ce4b33c45dee4a5eae88be6356ed3d5e877f13564a3a5"
     "cb91fab1f20cbab6d1c6d15820bdba73"},
    {NID_magma_ctr, "Magma, counter", kMagmaKey, "12345678", kMagmaText,
     "4e98110c97b7b93c3e250d93d6e85d69136d868807b2dbef568eb680ab52a12d"},
};

Bytes Apply(const Example& example, bool encrypts, const Bytes& in) {
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  Bytes iv = FromHex(example.iv), out(in.size() + EVP_MAX_BLOCK_LENGTH);
  iv.resize(EVP_MAX_IV_LENGTH);
  int length = 0, last = 0;
  EXPECT_EQ(1, EVP_CipherInit_ex(context, EVP_get_cipherbynid(example.cipher), nullptr, FromHex(example.key).data(),
                                 iv.data(), encrypts));
  EVP_CIPHER_CTX_set_padding(context, 0);
  EXPECT_EQ(1, EVP_CipherUpdate(context, out.data(), &length, in.data(), static_cast<int>(in.size())));
  EXPECT_EQ(1, EVP_CipherFinal_ex(context, out.data() + length, &last));
  EVP_CIPHER_CTX_free(context);
  out.resize(static_cast<size_t>(length + last));
  return out;
}

}  // namespace

TEST(GostCiphers, ExamplesOfTheStandards) {
  ENGINE_load_gost();
  for (const Example& example : kExamples) {
    const Bytes plain = FromHex(example.plain), ciphertext = FromHex(example.ciphertext);
    EXPECT_EQ(ciphertext, Apply(example, true, plain)) << example.name;
    EXPECT_EQ(plain, Apply(example, false, ciphertext)) << example.name;
  }
}
