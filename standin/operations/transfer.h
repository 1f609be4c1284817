// Additions to the store, import and export.
#pragma once

#include "standin/sessions/session.h"

namespace standin {

/// Adds one encoded certificate or list. An own certificate that `addition` names must exist. Fails with
/// kCertificateDamaged, kCrlDamaged, or as the store does.
void AddCertificate(Session& session, const SignParamRecord& addition, ByteView encoded);
void AddCrl(Session& session, const SignParamRecord& addition, ByteView encoded);

/// The certificate that the parameters name, or the whole store as a PKCS#7 bundle, in DER or PEM.
Bytes ExportObjects(Session& session, const SignParamRecord& param);

/// Adds the objects in `bytes` that the flags admit. Fails with kNothingToImport, kKeyDoesNotMatch,
/// kSelectionCancelled, or as the store does.
void ImportObjects(Session& session, const SignParamRecord& param, ByteView bytes);

}  // namespace standin
