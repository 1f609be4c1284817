// Owners of libcrypto objects: what a function of libcrypto gives away is held by one of these from then on.
#pragma once

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/evp.h>
#include <openssl/pkcs12.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <memory>

namespace standin {

template <auto freeFunction>
struct FreeWith {
  template <typename T>
  void operator()(T* object) const {
    freeFunction(object);
  }
};

struct FreeMemory {
  void operator()(void* memory) const { OPENSSL_free(memory); }
};
struct FreeCertificates {
  void operator()(STACK_OF(X509) * stack) const { sk_X509_pop_free(stack, X509_free); }
};
/// For stacks whose elements belong to somebody else.
struct FreeCertificateStackOnly {
  void operator()(STACK_OF(X509) * stack) const { sk_X509_free(stack); }
};

using CertPtr = std::unique_ptr<X509, FreeWith<X509_free>>;
using CrlPtr = std::unique_ptr<X509_CRL, FreeWith<X509_CRL_free>>;
using RequestPtr = std::unique_ptr<X509_REQ, FreeWith<X509_REQ_free>>;
using KeyPtr = std::unique_ptr<EVP_PKEY, FreeWith<EVP_PKEY_free>>;
using KeyContextPtr = std::unique_ptr<EVP_PKEY_CTX, FreeWith<EVP_PKEY_CTX_free>>;
using CmsPtr = std::unique_ptr<CMS_ContentInfo, FreeWith<CMS_ContentInfo_free>>;
using BioPtr = std::unique_ptr<BIO, FreeWith<BIO_free_all>>;
using DigestContextPtr = std::unique_ptr<EVP_MD_CTX, FreeWith<EVP_MD_CTX_free>>;
using DigestPtr = std::unique_ptr<EVP_MD, FreeWith<EVP_MD_free>>;
using Pkcs12Ptr = std::unique_ptr<PKCS12, FreeWith<PKCS12_free>>;
using TrustStorePtr = std::unique_ptr<X509_STORE, FreeWith<X509_STORE_free>>;
using TrustContextPtr = std::unique_ptr<X509_STORE_CTX, FreeWith<X509_STORE_CTX_free>>;
using NamePtr = std::unique_ptr<X509_NAME, FreeWith<X509_NAME_free>>;
using GeneralNamesPtr = std::unique_ptr<GENERAL_NAMES, FreeWith<GENERAL_NAMES_free>>;
using BigNumPtr = std::unique_ptr<BIGNUM, FreeWith<BN_free>>;
using CertStackPtr = std::unique_ptr<STACK_OF(X509), FreeCertificates>;
using CertViewPtr = std::unique_ptr<STACK_OF(X509), FreeCertificateStackOnly>;
using TextPtr = std::unique_ptr<char, FreeMemory>;
using OctetsPtr = std::unique_ptr<unsigned char, FreeMemory>;

/// Another owner of the same certificate.
inline CertPtr Share(X509* certificate) {
  X509_up_ref(certificate);
  return CertPtr(certificate);
}

}  // namespace standin
