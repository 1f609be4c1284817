// Certificate requests: made from a template, kept in the store's folder with the keys that were made for them.
#pragma once

#include "standin/sessions/session.h"

namespace standin {

/// The XML form of a request for what the template states. Unless the flags forbid it a key is made, and kept in the
/// store's folder under the session's PIN. Fails with kNotSupported, kNoStore, kOwnCertificateNotFound or
/// kRequestFailed.
Bytes MakeXmlRequest(Session& session, uint32_t flags, const CertificateRecord& wanted);

/// The DER form of the request that was made last. Fails with kNothingToExport.
Bytes NewestRequest(const Store& store);

}  // namespace standin
