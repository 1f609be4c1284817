// Alternative names of subjects and issuers: from certificates into records and, for requests, the other way.
#pragma once

#include "standin/base/buffers.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// False when the certificate has no such extension. The first name of a kind counts.
bool FillAltName(AltNameRecord& record, const X509* certificate, int extensionNid, Buffers& buffers);

/// The names that the record states, for a request; null when it states none. Fails with kRequestFailed when one cannot
/// be written.
GeneralNamesPtr GeneralNamesOf(const AltNameRecord& record);

}  // namespace standin
