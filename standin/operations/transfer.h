// Bringing objects into the store and taking them out.
#pragma once

#include "standin/sessions/session.h"

namespace standin {

/// Adds one encoded certificate or list. A named own certificate must exist. Fails with kCertificateDamaged,
/// kCrlDamaged, or as the store does.
void AddCertificate(Session& session, const SignParamRecord& addition, ByteView encoded);
void AddCrl(Session& session, const SignParamRecord& addition, ByteView encoded);

/// The certificate that the parameters name, or the whole store as a message of certificates and lists; DER or PEM.
Bytes ExportObjects(Session& session, const SignParamRecord& param);

/// Everything that the bytes hold and the flags admit. Fails with kNothingToImport, kKeyDoesNotMatch,
/// kSelectionCancelled, or as the store does.
void ImportObjects(Session& session, const SignParamRecord& param, ByteView bytes);

}  // namespace standin
