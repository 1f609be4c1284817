// The functions of the engine library tavl1, as this module calls them.
// Results are 0 for success, otherwise an engine code. A buffer or a result record that the engine hands
// out stays the engine's and goes back through the matching QUIVO_Free function, with the same session.
#pragma once

#include "engine/records.h"

/// One engine session; null where none is open.
using EngineSession = void*;
/// One engine stream; the engine alone reads and writes what it means.
using EngineStream = void*;

/// The kinds of parameter record that QUIVO_InitializeEx accepts.
constexpr int32_t kEngineRemoteParam = 0;
constexpr int32_t kEngineLocalParam = 1;
/// QUIVO_Ctrl: update the revocation lists and describe in the blob's buffer what was done.
constexpr int32_t kEngineCtrlUpdateCrl = 4;

extern "C" {

// Session, texts and memory.
int32_t QUIVO_Initialize(const char* profile, uint32_t flags, EngineSession* session);
int32_t QUIVO_InitializeEx(int32_t kind, const void* param, EngineSession* session);
int32_t QUIVO_InitMinimal(EngineSession* session);
int32_t QUIVO_Uninitialize(EngineSession session);
int32_t QUIVO_Ctrl(EngineSession session, int32_t code, DataBlob_t* text);
/// Writes the NUL-terminated ANSI text of `code` into `buffer`, at most `size` bytes.
int32_t QUIVO_GetErrorText(int32_t code, char* buffer, uint32_t size);
void* QUIVO_AllocMem(EngineSession session, uint32_t length);
int32_t QUIVO_FreeMem(EngineSession session, void* buffer);
/// Writes the NUL-terminated Base64 text of `length` bytes into `text`; negative on failure. Takes no session.
int32_t QUIVO_EncodeMem(char* text, const uint8_t* bytes, uint32_t length);

// Signing. A null path or an absent blob means that there is no such document.
int32_t QUIVO_SignMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* data,
                      const DataBlob_t* sign_in, DataBlob_t* sign_out);
int32_t QUIVO_SignFile(EngineSession session, const SignParamRecord* param, const char* data, const char* sign_in,
                       const char* sign_out);
int32_t QUIVO_StrSignFile(EngineSession session, const SignParamRecord* param, const char* data, const char* sign_in,
                          const char* sign_out);
int32_t QUIVO_SignAndEncryptFile(EngineSession session, const SignParamRecord* sign, const EncryptParamRecord* encrypt,
                                 const char* file_in, const char* file_out);
int32_t QUIVO_SignedInfoFile(EngineSession session, const char* file, SignedInfoResultRecord* info);
int32_t QUIVO_FreeSignedInfoResult(EngineSession session, SignedInfoResultRecord* info);

// Verification.
int32_t QUIVO_VerifyMem(EngineSession session, const VerifyParamRecord* param, const DataBlob_t* data,
                        const DataBlob_t* sign_in, DataBlob_t* sign_out, VerifyResultRecord* result);
int32_t QUIVO_VerifyFile(EngineSession session, const VerifyParamRecord* param, const char* data, const char* sign_in,
                         const char* sign_out, VerifyResultRecord* result);
int32_t QUIVO_StrVerifyFile(EngineSession session, const VerifyParamRecord* param, const char* data,
                            const char* sign_in, const char* sign_out, VerifyResultRecord* result);
int32_t QUIVO_FreeVerifyResult(EngineSession session, VerifyResultRecord* result);

// Encryption and decryption.
int32_t QUIVO_EncryptMem(EngineSession session, const EncryptParamRecord* param, const DataBlob_t* in, DataBlob_t* out);
int32_t QUIVO_EncryptFile(EngineSession session, const EncryptParamRecord* param, const char* file_in,
                          const char* file_out);
int32_t QUIVO_StrEncryptFile(EngineSession session, const EncryptParamRecord* param, const char* file_in,
                             const char* file_out);
int32_t QUIVO_DecryptMem(EngineSession session, const DecryptParamRecord* param, const DataBlob_t* in, DataBlob_t* out,
                         DecryptResultRecord* result);
int32_t QUIVO_DecryptFile(EngineSession session, const DecryptParamRecord* param, const char* file_in,
                          const char* file_out, DecryptResultRecord* result);
int32_t QUIVO_StrDecryptFile(EngineSession session, const DecryptParamRecord* param, const char* file_in,
                             const char* file_out, DecryptResultRecord* result);
int32_t QUIVO_DecryptAndVerifyFile(EngineSession session, const DecryptParamRecord* decrypt,
                                   const VerifyParamRecord* verify, const char* file_in, const char* file_out,
                                   DecryptResultRecord* decrypted, VerifyResultRecord* verified);
int32_t QUIVO_FreeDecryptResult(EngineSession session, DecryptResultRecord* result);

// Streams: an Init, any number of Updates, a Final. The engine writes the stream through its address.
int32_t QUIVO_StrSignInitMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* sign_in,
                             EngineStream* stream);
int32_t QUIVO_StrSignUpdateMem(EngineSession session, const SignParamRecord* param, EngineStream* stream,
                               const DataBlob_t* data);
int32_t QUIVO_StrSignFinalMem(EngineSession session, const SignParamRecord* param, EngineStream* stream,
                              DataBlob_t* sign_out);
int32_t QUIVO_StrVerifyInitMem(EngineSession session, const VerifyParamRecord* param, const DataBlob_t* sign_in,
                               EngineStream* stream);
int32_t QUIVO_StrVerifyUpdateMem(EngineSession session, const VerifyParamRecord* param, EngineStream* stream,
                                 const DataBlob_t* data);
int32_t QUIVO_StrVerifyFinalMem(EngineSession session, const VerifyParamRecord* param, EngineStream* stream,
                                DataBlob_t* sign_out, VerifyResultRecord* result);
int32_t QUIVO_StrEncryptInitMem(EngineSession session, const EncryptParamRecord* param, EngineStream* stream);
int32_t QUIVO_StrEncryptUpdateMem(EngineSession session, const EncryptParamRecord* param, EngineStream* stream,
                                  const DataBlob_t* in, DataBlob_t* out);
int32_t QUIVO_StrEncryptFinalMem(EngineSession session, const EncryptParamRecord* param, EngineStream* stream,
                                 DataBlob_t* out);
int32_t QUIVO_StrDecryptInitMem(EngineSession session, const DecryptParamRecord* param, const DataBlob_t* in,
                                int32_t* left, EngineStream* stream);
int32_t QUIVO_StrDecryptUpdateMem(EngineSession session, const DecryptParamRecord* param, EngineStream* stream,
                                  const DataBlob_t* in, int32_t* left, DataBlob_t* out);
int32_t QUIVO_StrDecryptFinalMem(EngineSession session, const DecryptParamRecord* param, EngineStream* stream,
                                 DecryptResultRecord* result);
int32_t QUIVO_StrHashInitMem(EngineSession session, const char* algorithm, EngineStream* stream);
int32_t QUIVO_StrHashUpdateMem(EngineSession session, EngineStream* stream, const DataBlob_t* data);
int32_t QUIVO_StrHashFinalMem(EngineSession session, EngineStream* stream, DataBlob_t* hash);

// Hashing and random numbers.
int32_t QUIVO_HashMem(EngineSession session, const DataBlob_t* in, DataBlob_t* hash);
int32_t QUIVO_HashFile(EngineSession session, const char* file, DataBlob_t* hash);
int32_t QUIVO_StrHashFile(EngineSession session, const char* algorithm, const char* file, DataBlob_t* hash);
int32_t QUIVO_GenRandom(EngineSession session, int32_t length, DataBlob_t* random);

// Certificates, revocation lists and requests.
int32_t QUIVO_FindCert(EngineSession session, const FindParamRecord* param, FindResultRecord* result);
int32_t QUIVO_FreeFindResult(EngineSession session, FindResultRecord* result);
int32_t QUIVO_ParseCert(EngineSession session, const DataBlob_t* encoded, uint32_t info, CertificateRecord* result);
int32_t QUIVO_VerifyCert(EngineSession session, const VerifyCertParamRecord* param, const DataBlob_t* encoded,
                         CertificateRecord* result);
/// Gives back what a certificate record points to, not the record itself.
int32_t QUIVO_FreeCert(EngineSession session, CertificateRecord* certificate);
int32_t QUIVO_ShowCertificate(EngineSession session, const DataBlob_t* encoded);
int32_t QUIVO_ShowCrl(EngineSession session, const DataBlob_t* encoded);
int32_t QUIVO_AddCertificate(EngineSession session, const SignParamRecord* addition, const DataBlob_t* encoded);
int32_t QUIVO_AddCRL(EngineSession session, const SignParamRecord* addition, const DataBlob_t* encoded);
int32_t QUIVO_ExportMem(EngineSession session, const SignParamRecord* param, DataBlob_t* out);
int32_t QUIVO_ExportFile(EngineSession session, const SignParamRecord* param, const char* file);
int32_t QUIVO_ImportMem(EngineSession session, const SignParamRecord* param, const DataBlob_t* in);
int32_t QUIVO_ImportFile(EngineSession session, const SignParamRecord* param, const char* file);
int32_t QUIVO_CreateXmlRequest(EngineSession session, uint32_t flag, const CertificateRecord* certTemplate,
                               DataBlob_t* request);

}  // extern "C"
