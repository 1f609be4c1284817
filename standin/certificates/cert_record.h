// Certificate records, filled from certificates under a mask of fields.
#pragma once

#include "standin/base/openssl_owners.h"
#include "standin/base/records.h"

namespace standin {

/// A record with the fields of `mask` that the certificate has; its `fields` states which those are. What it points to
/// is memory of `buffers`.
CertificateRecord RecordOf(X509* certificate, uint32_t mask, Buffers& buffers);

/// Key usage in the bits of the records; 0 when the certificate does not state it.
uint32_t KeyUsageOf(X509* certificate);
/// Whether the certificate allows every use in `bits`; one that states no key usage allows all.
bool AllowsKeyUsage(X509* certificate, uint32_t bits);

}  // namespace standin
