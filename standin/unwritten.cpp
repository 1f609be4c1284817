// Exported functions that this engine does not offer yet.
#include "standin/guard.h"

using namespace standin;

int32_t QUIVO_Ctrl(EngineSession, int32_t, DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_SignAndEncryptFile(EngineSession, const SignParamRecord*, const EncryptParamRecord*, const char*,
                                 const char*) {
  return kNotSupported;
}
int32_t QUIVO_DecryptAndVerifyFile(EngineSession, const DecryptParamRecord*, const VerifyParamRecord*, const char*,
                                   const char*, DecryptResultRecord*, VerifyResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_ParseCert(EngineSession, const DataBlob_t*, uint32_t, CertificateRecord*) { return kNotSupported; }
int32_t QUIVO_VerifyCert(EngineSession, const VerifyCertParamRecord*, const DataBlob_t*, CertificateRecord*) {
  return kNotSupported;
}
int32_t QUIVO_ShowCertificate(EngineSession, const DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_ShowCrl(EngineSession, const DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_AddCertificate(EngineSession, const SignParamRecord*, const DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_AddCRL(EngineSession, const SignParamRecord*, const DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_ExportMem(EngineSession, const SignParamRecord*, DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_ExportFile(EngineSession, const SignParamRecord*, const char*) { return kNotSupported; }
int32_t QUIVO_ImportMem(EngineSession, const SignParamRecord*, const DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_ImportFile(EngineSession, const SignParamRecord*, const char*) { return kNotSupported; }
int32_t QUIVO_CreateXmlRequest(EngineSession, uint32_t, const CertificateRecord*, DataBlob_t*) { return kNotSupported; }
