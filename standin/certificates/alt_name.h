// Alternative names of subjects and issuers: from certificates into records and, for requests, the other way.
#pragma once

#include <array>

#include "standin/base/buffers.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// Where a record's text stands in an alternative name.
struct AltNameField {
  enum class Place { kEmail, kDns, kUri, kIp, kDirectory, kOther };
  char* AltNameRecord::*text;
  Place place;
  const char* oid;  ///< of the directory attribute or of the other name
};

/// Every member of the record. The kinds that no standard defines are "other names" under example identifiers.
const std::array<AltNameField, 15>& AltNameFields();

/// False when the certificate has no such extension. The first name of a kind counts.
bool FillAltName(AltNameRecord& record, const X509* certificate, int extensionNid, Buffers& buffers);
void FreeAltName(AltNameRecord& record, Buffers& buffers);

/// The names that the record states, for a request; null when it states none. Fails with kRequestFailed when one cannot
/// be written.
GeneralNamesPtr GeneralNamesOf(const AltNameRecord& record);

}  // namespace standin
