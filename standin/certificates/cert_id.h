// Certificate identifiers: by issuer and serial number, by key identifier, by hash.
#pragma once

#include "standin/base/contract.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// False for a null identifier and for one whose type has not been chosen. Fails with kWinInvalidParameter when the
/// type is unknown or what it asks for is not set.
bool NamesCertificate(const CertIdRecord* id);

/// Whether the complete identifier names this certificate. A hash is told by its length: SHA-1, SHA-256, SHA-384,
/// SHA-512.
bool Matches(const X509* certificate, const CertIdRecord& id);

/// Whether `hash` is a hash of the certificate.
bool IsHashOf(const X509* certificate, const DataBlob_t& hash);

}  // namespace standin
