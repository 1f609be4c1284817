// pkiobj: the file-oriented object with its own session and windows.
#pragma once

#include "com/object.h"
#include "quivocom.h"

class pkiobj : public com::Object<Ipkiobj> {
 public:
  STDMETHODIMP Init(BSTR profile) override;
  STDMETHODIMP Uninit() override;
  STDMETHODIMP Sign(BSTR fname_in, BSTR fname_out, LONG bDetached) override;
  STDMETHODIMP Verify(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP Encrypt(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP Unencrypt(BSTR fname_in, BSTR fname_out, LONG bShowResult) override;
  STDMETHODIMP SignAndEncrypt(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP VerifyAndUnencrypt(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP SetRecipients(BSTR addresses) override;
  STDMETHODIMP IsSigned(BSTR fname) override;
  STDMETHODIMP AddRecipDERCert(BSTR cert) override;
  STDMETHODIMP FreeRecipCerts() override;
};
