// QUIVO: the main object, a session with the operations of the engine. Each family of methods has a unit of its own.
#pragma once

#include "session/session.h"

class QUIVO : public session::Session {
 public:
  // Signing.
  STDMETHODIMP SignMem(ISignParam* param, VARIANT data, VARIANT sign_in, VARIANT* sign_out) override;
  STDMETHODIMP SignFile(ISignParam* param, BSTR data, BSTR sign_in, BSTR sign_out) override;
  STDMETHODIMP StrSignFile(ISignParam* param, BSTR data, BSTR sign_in, BSTR sign_out) override;
  STDMETHODIMP SignFile2B64Mem(ISignParam* param, BSTR FileName, VARIANT* Signature, VARIANT* var_err_text) override;
  STDMETHODIMP GetMyCertB64(VARIANT* var_cert_str) override;

  // Verification.
  STDMETHODIMP VerifyMem(IVerifyParam* pIVerifyParam, VARIANT data, VARIANT sign_in, VARIANT* sign_out,
                         VARIANT* VerifyResults) override;
  STDMETHODIMP VerifyFile(IVerifyParam* pIVerifyParam, BSTR data, BSTR sign_in, BSTR sign_out,
                          VARIANT* VerifyResults) override;
  STDMETHODIMP StrVerifyFile(IVerifyParam* pIVerifyParam, BSTR data, BSTR sign_in, BSTR sign_out,
                             VARIANT* VerifyResults) override;

  // Encryption and decryption.
  STDMETHODIMP EncryptMem(IEncryptParam* pIParam, VARIANT in, VARIANT* out) override;
  STDMETHODIMP EncryptFile(IEncryptParam* pIParam, BSTR file_in, BSTR file_out) override;
  STDMETHODIMP StrEncryptFile(IEncryptParam* pIParam, BSTR file_in, BSTR file_out) override;
  STDMETHODIMP DecryptMem(IDecryptParam* pIParam, VARIANT in, VARIANT* out, ICertificate** pICert) override;
  STDMETHODIMP DecryptFile(IDecryptParam* pIParam, BSTR file_in, BSTR file_out, ICertificate** pICert) override;
  STDMETHODIMP StrDecryptFile(IDecryptParam* pIParam, BSTR file_in, BSTR file_out, ICertificate** pICert) override;

  // Streaming.
  STDMETHODIMP StrSignInitMem(ISignParam* param, VARIANT sign_in, IStreamCtx* hStr) override;
  STDMETHODIMP StrSignUpdateMem(ISignParam* param, IStreamCtx* hStr, VARIANT data) override;
  STDMETHODIMP StrSignFinalMem(ISignParam* param, IStreamCtx* hStr, VARIANT* sign_out) override;
  STDMETHODIMP StrVerifyInitMem(IVerifyParam* param, VARIANT sign_in, IStreamCtx* hStr) override;
  STDMETHODIMP StrVerifyUpdateMem(IVerifyParam* param, IStreamCtx* hStr, VARIANT data) override;
  STDMETHODIMP StrVerifyFinalMem(IVerifyParam* param, IStreamCtx* hStr, VARIANT* sign_out,
                                 VARIANT* VerifyResults) override;
  STDMETHODIMP StrEncryptInitMem(IEncryptParam* param, IStreamCtx* hStr) override;
  STDMETHODIMP StrEncryptUpdateMem(IEncryptParam* param, IStreamCtx* hStr, VARIANT in, VARIANT* out) override;
  STDMETHODIMP StrEncryptFinalMem(IEncryptParam* param, IStreamCtx* hStr, VARIANT* out) override;
  STDMETHODIMP StrDecryptInitMem(IDecryptParam* pIParam, VARIANT in, VARIANT* left, IStreamCtx* hStr) override;
  STDMETHODIMP StrDecryptUpdateMem(IDecryptParam* pIParam, IStreamCtx* hStr, VARIANT in, VARIANT* left,
                                   VARIANT* out) override;
  STDMETHODIMP StrDecryptFinalMem(IDecryptParam* pIParam, IStreamCtx* hStr, ICertificate** pICert) override;
  STDMETHODIMP StrHashInitMem(BSTR algorithm, IStreamCtx* hStr) override;
  STDMETHODIMP StrHashUpdateMem(IStreamCtx* hStr, VARIANT data) override;
  STDMETHODIMP StrHashFinalMem(IStreamCtx* hStr, VARIANT* hash) override;

  // Hashing and random numbers.
  STDMETHODIMP HashMem(VARIANT in, VARIANT* hash) override;
  STDMETHODIMP HashFile(BSTR file_name, VARIANT* hash) override;
  STDMETHODIMP StrHashFile(BSTR algorithm, BSTR file_name, VARIANT* hash, VARIANT_BOOL bVBS) override;
  STDMETHODIMP GenRandom(LONG len, VARIANT* random) override;

  // Certificates and revocation lists.
  STDMETHODIMP FindCert(IFindParam* pIFindParam, VARIANT* FindResult) override;
  STDMETHODIMP ParseCert(VARIANT enccert, Certinfo_t info, ICertificate** pICertificate) override;
  STDMETHODIMP ShowCertificate(VARIANT enccert) override;
  STDMETHODIMP ShowCrl(VARIANT encCrl) override;
  STDMETHODIMP AddCertificate(ICertId* mycert, VARIANT newcert) override;
  STDMETHODIMP AddCRL(ICertId* mycert, VARIANT crl) override;
  STDMETHODIMP ExportMem(IExportParam* pIParam, VARIANT* out, VARIANT_BOOL bVBS) override;
  STDMETHODIMP ExportFile(IExportParam* pIParam, BSTR file_out) override;
  STDMETHODIMP ImportMem(IImportParam* pIParam, VARIANT in) override;
  STDMETHODIMP ImportFile(IImportParam* pIParam, BSTR file_in) override;

  // Requests and the own certificate's usages.
  STDMETHODIMP CreateXmlRequest(XmlRequest_Flag_t flag, ICertificate* pICertTempl, VARIANT* pXmlReq,
                                VARIANT_BOOL bVBS) override;
  STDMETHODIMP CheckOID(BSTR oid, VARIANT* var_err_text) override;
};
