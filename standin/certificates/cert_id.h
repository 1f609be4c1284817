// Certificate identifiers: by issuer and serial number, by key identifier, by hash.
#pragma once

#include "standin/base/contract.h"
#include "standin/base/openssl_owners.h"
#include "standin/certificates/index_terms.h"

namespace standin {

/// False if the identifier is null or its type has not been chosen. Fails with kWinInvalidParameter if the type is
/// unknown or its member is not set.
bool NamesCertificate(const CertIdRecord* id);

/// Whether a complete identifier names this certificate.
bool Matches(const X509* certificate, const CertIdRecord& id);

/// The term of the hash; none if certificates are not found by hashes of its length.
std::optional<Term> TermOfHash(const DataBlob_t& hash);
/// The term of what a complete identifier names.
std::optional<Term> TermOf(const CertIdRecord& id);

/// Whether `hash` is the certificate's SHA-1, SHA-256, SHA-384 or SHA-512, by its length.
bool IsHashOf(const X509* certificate, const DataBlob_t& hash);

}  // namespace standin
