// Bringing objects into the store and taking them out.
#pragma once

#include "standin/sessions/session.h"

namespace standin {

constexpr uint32_t kExportUi = 0x0001;
constexpr uint32_t kExportDer = 0x0002;
constexpr uint32_t kExportNewRequest = 0x0004;
constexpr uint32_t kExportRevocationRequest = 0x0008;
constexpr uint32_t kExportTokens = 0x0020 | 0x0040 | 0x0080 | 0x0100;
constexpr uint32_t kImportUi = 0x0001;
constexpr uint32_t kImportCertificate = 0x0002;
constexpr uint32_t kImportCrl = 0x0004;
constexpr uint32_t kImportMyCertificate = 0x0008;
constexpr uint32_t kImportUpdate = 0x0010;

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
