// Certificate records: filled from certificates under a mask of fields, copied, and given back.
#pragma once

#include "engine/records.h"
#include "standin/base/buffers.h"
#include "standin/base/openssl_owners.h"

namespace standin {

enum CertField : uint32_t {
  kFieldSerial = 1u << 0,
  kFieldIssuer = 1u << 1,
  kFieldSubject = 1u << 2,
  kFieldIssuerId = 1u << 3,
  kFieldSubjectId = 1u << 4,
  kFieldNotBefore = 1u << 5,
  kFieldNotAfter = 1u << 6,
  kFieldKeyUsage = 1u << 7,
  kFieldIssuerAltName = 1u << 8,
  kFieldSubjectAltName = 1u << 9,
  kFieldExtKeyUsage = 1u << 10,
  kFieldPolicy = 1u << 11,
  kFieldExtensions = 1u << 12,
  kFieldNotBeforePrivate = 1u << 13,
  kFieldNotAfterPrivate = 1u << 14,
  kFieldKeyId = 1u << 15,
  kFieldCertEncoded = 1u << 16,
  kFieldCertHash = 1u << 17,
  kFieldAlgorithm = 1u << 18,
  kFieldSubjectQualified = 1u << 30,
  kFieldAlgorithmOid = 1u << 31,
};

/// Fills the fields of `mask` that the certificate has and states in `fields` which those are. The record is taken as
/// empty; what it points to is memory of `buffers`.
void FillRecord(CertificateRecord& record, X509* certificate, uint32_t mask, Buffers& buffers);

/// Gives back what the record points to, and empties it.
void FreeRecord(CertificateRecord& record, Buffers& buffers);

/// Key usage in the bits of the records; 0 when the certificate does not state it.
uint32_t KeyUsageOf(X509* certificate);
/// Whether the certificate allows every use in `bits`; one that states no key usage allows all.
bool AllowsKeyUsage(X509* certificate, uint32_t bits);

}  // namespace standin
