// Exported functions that this engine does not offer yet.
#include "standin/guard.h"

using namespace standin;

int32_t QUIVO_Ctrl(EngineSession, int32_t, DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_SignAndEncryptFile(EngineSession, const SignParamRecord*, const EncryptParamRecord*, const char*,
                                 const char*) {
  return kNotSupported;
}
int32_t QUIVO_SignedInfoFile(EngineSession, const char*, SignedInfoResultRecord*) { return kNotSupported; }
int32_t QUIVO_FreeSignedInfoResult(EngineSession, SignedInfoResultRecord*) { return kNotSupported; }
int32_t QUIVO_VerifyMem(EngineSession, const VerifyParamRecord*, const DataBlob_t*, const DataBlob_t*, DataBlob_t*,
                        VerifyResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_VerifyFile(EngineSession, const VerifyParamRecord*, const char*, const char*, const char*,
                         VerifyResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_StrVerifyFile(EngineSession, const VerifyParamRecord*, const char*, const char*, const char*,
                            VerifyResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_FreeVerifyResult(EngineSession, VerifyResultRecord*) { return kNotSupported; }
int32_t QUIVO_EncryptMem(EngineSession, const EncryptParamRecord*, const DataBlob_t*, DataBlob_t*) {
  return kNotSupported;
}
int32_t QUIVO_EncryptFile(EngineSession, const EncryptParamRecord*, const char*, const char*) { return kNotSupported; }
int32_t QUIVO_StrEncryptFile(EngineSession, const EncryptParamRecord*, const char*, const char*) {
  return kNotSupported;
}
int32_t QUIVO_DecryptMem(EngineSession, const DecryptParamRecord*, const DataBlob_t*, DataBlob_t*,
                         DecryptResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_DecryptFile(EngineSession, const DecryptParamRecord*, const char*, const char*, DecryptResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_StrDecryptFile(EngineSession, const DecryptParamRecord*, const char*, const char*, DecryptResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_DecryptAndVerifyFile(EngineSession, const DecryptParamRecord*, const VerifyParamRecord*, const char*,
                                   const char*, DecryptResultRecord*, VerifyResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_FreeDecryptResult(EngineSession, DecryptResultRecord*) { return kNotSupported; }
int32_t QUIVO_StrVerifyInitMem(EngineSession, const VerifyParamRecord*, const DataBlob_t*, EngineStream*) {
  return kNotSupported;
}
int32_t QUIVO_StrVerifyUpdateMem(EngineSession, const VerifyParamRecord*, EngineStream*, const DataBlob_t*) {
  return kNotSupported;
}
int32_t QUIVO_StrVerifyFinalMem(EngineSession, const VerifyParamRecord*, EngineStream*, DataBlob_t*,
                                VerifyResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_StrEncryptInitMem(EngineSession, const EncryptParamRecord*, EngineStream*) { return kNotSupported; }
int32_t QUIVO_StrEncryptUpdateMem(EngineSession, const EncryptParamRecord*, EngineStream*, const DataBlob_t*,
                                  DataBlob_t*) {
  return kNotSupported;
}
int32_t QUIVO_StrEncryptFinalMem(EngineSession, const EncryptParamRecord*, EngineStream*, DataBlob_t*) {
  return kNotSupported;
}
int32_t QUIVO_StrDecryptInitMem(EngineSession, const DecryptParamRecord*, const DataBlob_t*, int32_t*, EngineStream*) {
  return kNotSupported;
}
int32_t QUIVO_StrDecryptUpdateMem(EngineSession, const DecryptParamRecord*, EngineStream*, const DataBlob_t*, int32_t*,
                                  DataBlob_t*) {
  return kNotSupported;
}
int32_t QUIVO_StrDecryptFinalMem(EngineSession, const DecryptParamRecord*, EngineStream*, DecryptResultRecord*) {
  return kNotSupported;
}
int32_t QUIVO_StrHashInitMem(EngineSession, const char*, EngineStream*) { return kNotSupported; }
int32_t QUIVO_StrHashUpdateMem(EngineSession, EngineStream*, const DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_StrHashFinalMem(EngineSession, EngineStream*, DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_HashMem(EngineSession, const DataBlob_t*, DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_HashFile(EngineSession, const char*, DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_StrHashFile(EngineSession, const char*, const char*, DataBlob_t*) { return kNotSupported; }
int32_t QUIVO_GenRandom(EngineSession, int32_t, DataBlob_t*) { return kNotSupported; }
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
