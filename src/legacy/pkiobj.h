// pkiobj: the older, file-oriented object. It has its own session and recipients, and tells its user itself
// what happened, in message boxes and a results sheet.
#pragma once

#include "com/object.h"
#include "engine/functions.h"
#include "legacy/recipient_list.h"
#include "quivocom.h"

class pkiobj : public com::Object<Ipkiobj> {
 public:
  /// Gives the recipients back. The session stays open: closing it is the client's, with Uninit.
  ~pkiobj();

  // Session (session.cpp).
  STDMETHODIMP Init(BSTR profile) override;
  STDMETHODIMP Uninit() override;
  STDMETHODIMP IsSigned(BSTR fname) override;

  // Recipients of Encrypt and SignAndEncrypt (recipients.cpp).
  STDMETHODIMP SetRecipients(BSTR addresses) override;
  STDMETHODIMP AddRecipDERCert(BSTR cert) override;
  STDMETHODIMP FreeRecipCerts() override;

  // Files (file_operations.cpp).
  STDMETHODIMP Sign(BSTR fname_in, BSTR fname_out, LONG bDetached) override;
  STDMETHODIMP Verify(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP Encrypt(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP Unencrypt(BSTR fname_in, BSTR fname_out, LONG bShowResult) override;
  STDMETHODIMP SignAndEncrypt(BSTR fname_in, BSTR fname_out) override;
  STDMETHODIMP VerifyAndUnencrypt(BSTR fname_in, BSTR fname_out) override;

 private:
  /// What the last opening of a session returned; outlives the session.
  int32_t initResult_ = 0;
  EngineSession session_ = nullptr;
  RecipientList recipients_;
};
