// A certificate or revocation list of a store, decoded when it is first asked for. Sessions and threads share it.
#pragma once

#include <atomic>
#include <concepts>

#include "standin/base/digest.h"
#include "standin/certificates/der_objects.h"
#include "standin/certificates/index_terms.h"

namespace standin {

template <typename Object>
class StoredObject {
  static constexpr bool kIsCertificate = std::same_as<Object, X509>;

 public:
  using Owner = std::conditional_t<kIsCertificate, CertPtr, CrlPtr>;
  using Ptr = std::shared_ptr<const StoredObject>;

  /// Null unless the bytes are such an object, as far as that shows without decoding them.
  static Ptr fromDer(ByteView der) {
    if (std::vector<Term> terms = termsOf(der); !terms.empty()) {
      return std::make_shared<StoredObject>(Bytes(der.begin(), der.end()), std::move(terms), nullptr);
    }
    Owner object = decoded(der);
    return object == nullptr ? nullptr : fromObject(std::move(object));
  }
  static Ptr fromObject(Owner object) {
    Bytes der = DerOf(object.get());
    std::vector<Term> terms = termsOf(der);
    return std::make_shared<StoredObject>(std::move(der), std::move(terms), std::move(object));
  }

  StoredObject(Bytes der, std::vector<Term> terms, Owner object)
      : der_(std::move(der)), terms_(std::move(terms)), indexed_(!terms_.empty()), object_(object.release()) {
    for (const EVP_MD* digest : {EVP_sha1(), EVP_sha256()}) terms_.push_back(HashTerm(HashOf(der_, digest)));
  }
  ~StoredObject() { const Owner owner(object_.load()); }
  StoredObject(const StoredObject&) = delete;
  StoredObject& operator=(const StoredObject&) = delete;

  /// Null if the bytes turn out to be damaged.
  Object* get() const {
    Object* object = object_.load();
    if (object != nullptr) return object;
    Owner made = decoded(der_);
    if (made == nullptr) return nullptr;  // or memory is short: the next call tries again
    // Another thread may have been faster.
    return object_.compare_exchange_strong(object, made.get()) ? made.release() : object;
  }

  const Bytes& der() const { return der_; }
  const std::vector<Term>& terms() const { return terms_; }
  /// The term of exactly these bytes.
  Term identity() const { return terms_.back(); }
  /// False if it is under no term but those of its hashes.
  bool isIndexed() const { return indexed_; }

  /// Whether a certificate is self-signed with a good signature.
  bool isRoot() const requires kIsCertificate {
    // A refusal is not kept: memory may have been short.
    if (!is_root_ && get() != nullptr) is_root_ = X509_self_signed(get(), 1) == 1;
    return is_root_;
  }

 private:
  static std::vector<Term> termsOf(ByteView der) {
    if constexpr (kIsCertificate)
      return TermsOfCertificate(der);
    else
      return TermsOfCrl(der);
  }
  static Owner decoded(ByteView der) {
    if constexpr (kIsCertificate)
      return CertificateFromDer(der);
    else
      return CrlFromDer(der);
  }

  const Bytes der_;
  std::vector<Term> terms_;
  const bool indexed_;
  mutable std::atomic<Object*> object_;
  mutable std::atomic<bool> is_root_ = false;
};

using StoredCertificate = StoredObject<X509>;
using StoredCrl = StoredObject<X509_CRL>;

}  // namespace standin
