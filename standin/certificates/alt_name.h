// Alternative names of subjects and issuers: from certificates to records, and from records to requests.
#pragma once

#include "standin/base/buffers.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// False if the certificate has no such extension. Of several names of one kind the record has the first.
bool FillAltName(AltNameRecord& record, const X509* certificate, int extensionNid, Buffers& buffers);

/// The names of the record, for a request; null if it has none. Fails with kRequestFailed if one cannot be encoded.
GeneralNamesPtr GeneralNamesOf(const AltNameRecord& record);

}  // namespace standin
