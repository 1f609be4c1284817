// Certificate requests, made from a template and kept in the store's folder with their keys.
#pragma once

#include "standin/sessions/session.h"

namespace standin {

/// The XML form of a request. Makes a key, unless the flags forbid it, and keeps it in the store's folder under the
/// session's PIN. Fails with kNotSupported, kNoStore, kOwnCertificateNotFound or kRequestFailed.
Bytes MakeXmlRequest(Session& session, uint32_t flags, const CertificateRecord& wanted);

/// The last request, in DER. Fails with kNothingToExport.
Bytes NewestRequest(const Store& store);

}  // namespace standin
