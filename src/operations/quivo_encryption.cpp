// Encryption to receivers and decryption, of byte arrays and of files.
#include "objects/certificate.h"
#include "objects/encrypt_param.h"
#include "objects/operation_params.h"
#include "operations/steps.h"

using namespace operations;
using objects::CertificateFromRecord;

STDMETHODIMP QUIVO::EncryptMem(IEncryptParam* pIParam, VARIANT in, VARIANT* out) {
  EncryptParam* options = com::Own<EncryptParam>(pIParam);
  if (!options) return E_QUIVO_INVALID_ARGUMENT;
  return TransformBytes(owner(), in, out, [&](EngineSession session, const DataBlob_t* plain, DataBlob_t* encrypted) {
    return QUIVO_EncryptMem(session, options->record(), plain, encrypted);
  });
}

STDMETHODIMP QUIVO::DecryptMem(IDecryptParam* pIParam, VARIANT in, VARIANT* out, ICertificate** pICert) {
  DecryptParam* options = com::Own<DecryptParam>(pIParam);
  if (!options || !out || !pICert) return E_QUIVO_INVALID_ARGUMENT;
  SessionUse session(owner());
  engine::DecryptResult result(session);
  // After a failure the result stays the engine's, on purpose: "The two decryptions" in docs/behaviour.md.
  return TransformBytes(
      owner(), in, out,
      [&](EngineSession, const DataBlob_t* encrypted, DataBlob_t* plain) {
        int32_t code = QUIVO_DecryptMem(session, options->record(), encrypted, plain, result.receive());
        if (code != 0) result.leave();
        return code;
      },
      [&](HRESULT hr) { return FAILED(hr) ? hr : CertificateFromRecord(result.get().cert, pICert); });
}

namespace {

HRESULT EncryptFileWith(decltype(QUIVO_EncryptFile) engineEncrypt, QUIVO& quivo, IEncryptParam* param, BSTR file_in,
                        BSTR file_out) {
  if (quivo.isUntrusted()) return E_QUIVO_ACCESS_DENIED;
  EncryptParam* options = com::Own<EncryptParam>(param);
  if (!options) return E_QUIVO_INVALID_ARGUMENT;
  AnsiArguments paths(Required{file_in}, Required{file_out});
  if (FAILED(paths.failure())) return paths.failure();
  SessionUse session(quivo.owner());
  return ToModuleHResult(engineEncrypt(session, options->record(), paths.get<0>(), paths.get<1>()));
}

HRESULT DecryptFileWith(decltype(QUIVO_DecryptFile) engineDecrypt, QUIVO& quivo, IDecryptParam* param, BSTR file_in,
                        BSTR file_out, ICertificate** cert) {
  if (quivo.isUntrusted()) return E_QUIVO_ACCESS_DENIED;
  DecryptParam* options = com::Own<DecryptParam>(param);
  if (!options || !cert) return E_QUIVO_INVALID_ARGUMENT;
  AnsiArguments paths(Required{file_in}, Required{file_out});
  if (FAILED(paths.failure())) return paths.failure();
  SessionUse session(quivo.owner());
  engine::DecryptResult result(session);
  int32_t code = engineDecrypt(session, options->record(), paths.get<0>(), paths.get<1>(), result.receive());
  // After a failure too, on purpose: "The two decryptions" in docs/behaviour.md.
  HRESULT hr = CertificateFromRecord(result.get().cert, cert);
  return ToModuleHResult(code != 0 ? code : hr);
}

}  // namespace

STDMETHODIMP QUIVO::EncryptFile(IEncryptParam* pIParam, BSTR file_in, BSTR file_out) {
  return EncryptFileWith(QUIVO_EncryptFile, *this, pIParam, file_in, file_out);
}

STDMETHODIMP QUIVO::StrEncryptFile(IEncryptParam* pIParam, BSTR file_in, BSTR file_out) {
  return EncryptFileWith(QUIVO_StrEncryptFile, *this, pIParam, file_in, file_out);
}

STDMETHODIMP QUIVO::DecryptFile(IDecryptParam* pIParam, BSTR file_in, BSTR file_out, ICertificate** pICert) {
  return DecryptFileWith(QUIVO_DecryptFile, *this, pIParam, file_in, file_out, pICert);
}

STDMETHODIMP QUIVO::StrDecryptFile(IDecryptParam* pIParam, BSTR file_in, BSTR file_out, ICertificate** pICert) {
  return DecryptFileWith(QUIVO_StrDecryptFile, *this, pIParam, file_in, file_out, pICert);
}
