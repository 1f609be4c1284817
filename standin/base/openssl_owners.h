// Owners of libcrypto's objects.
#pragma once

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pkcs12.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <utility>

#include "standin/base/bytes.h"
#include "standin/base/owned.h"

namespace standin {

struct FreeMemory {
  void operator()(void* memory) const { OPENSSL_free(memory); }
};
/// A stack and its elements.
template <auto freeElement>
struct FreeStack {
  template <typename Stack>
  void operator()(Stack* stack) const {
    OPENSSL_sk_pop_free(reinterpret_cast<OPENSSL_STACK*>(stack), [](void* element) {
      freeElement(static_cast<typename FreeWith<freeElement>::Object*>(element));
    });
  }
};
/// A stack that does not own its elements.
struct FreeStackAlone {
  void operator()(STACK_OF(X509) * stack) const { sk_X509_free(stack); }
};

using AlgorithmPtr = Owned<X509_ALGOR_free>;
using BioPtr = Owned<BIO_free_all>;
using CertPtr = Owned<X509_free>;
using CertStackPtr = std::unique_ptr<STACK_OF(X509), FreeStack<X509_free>>;
using CertViewPtr = std::unique_ptr<STACK_OF(X509), FreeStackAlone>;
using CmsPtr = Owned<CMS_ContentInfo_free>;
using CrlPtr = Owned<X509_CRL_free>;
using DigestPtr = Owned<EVP_MD_free>;
using DigestContextPtr = Owned<EVP_MD_CTX_free>;
using ExtKeyUsagePtr = Owned<EXTENDED_KEY_USAGE_free>;
using ExtensionPtr = Owned<X509_EXTENSION_free>;
using GeneralNamePtr = Owned<GENERAL_NAME_free>;
using GeneralNamesPtr = Owned<GENERAL_NAMES_free>;
using KeyPtr = Owned<EVP_PKEY_free>;
using NamePtr = Owned<X509_NAME_free>;
using ObjectPtr = Owned<ASN1_OBJECT_free>;
using OctetsPtr = std::unique_ptr<unsigned char, FreeMemory>;
using RequestPtr = Owned<X509_REQ_free>;
using TextPtr = std::unique_ptr<char, FreeMemory>;
using TrustContextPtr = Owned<X509_STORE_CTX_free>;
using TrustStorePtr = Owned<X509_STORE_free>;

/// The object that the bytes begin with; null if there is none, or if other bytes follow and `alone` is set.
template <typename Owner, typename Decoder>
Owner Decode(Decoder decodeObject, ByteView der, bool alone = false) {
  const unsigned char* cursor = der.data();
  Owner object(std::in_range<long>(der.size()) ? decodeObject(nullptr, &cursor, static_cast<long>(der.size()))
                                               : nullptr);
  if (object != nullptr && (!alone || cursor == der.data() + der.size())) return object;
  ERR_clear_error();
  return nullptr;
}

/// Another owner of the same object.
inline CertPtr Share(X509* certificate) {
  X509_up_ref(certificate);
  return CertPtr(certificate);
}
inline CrlPtr Share(X509_CRL* crl) {
  X509_CRL_up_ref(crl);
  return CrlPtr(crl);
}
inline KeyPtr Share(EVP_PKEY* key) {
  EVP_PKEY_up_ref(key);
  return KeyPtr(key);
}

}  // namespace standin
