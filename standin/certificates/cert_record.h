// Certificate records, filled from certificates under a mask of fields.
#pragma once

#include "standin/base/openssl_owners.h"
#include "standin/base/records.h"

namespace standin {

/// A record with the fields of `mask` that the certificate has, listed in `fields`. It points to memory of `buffers`.
CertificateRecord RecordOf(X509* certificate, uint32_t mask, Buffers& buffers);
/// The same for a signer or a sender. A caller whose mask is 0 shows the person in a window: the record has what the
/// window needs.
CertificateRecord PersonRecordOf(X509* certificate, uint32_t mask, Buffers& buffers);

/// A mask of KeyUsage; 0 if the certificate does not state the extension.
uint32_t KeyUsageOf(X509* certificate);
/// Whether the certificate allows every use in `bits`. Without the extension it allows all.
bool AllowsKeyUsage(X509* certificate, uint32_t bits);

}  // namespace standin
