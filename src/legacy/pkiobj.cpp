#include "legacy/pkiobj.h"

STDMETHODIMP pkiobj::Init(BSTR) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::Uninit() { return E_NOTIMPL; }
STDMETHODIMP pkiobj::Sign(BSTR, BSTR, LONG) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::Verify(BSTR, BSTR) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::Encrypt(BSTR, BSTR) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::Unencrypt(BSTR, BSTR, LONG) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::SignAndEncrypt(BSTR, BSTR) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::VerifyAndUnencrypt(BSTR, BSTR) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::SetRecipients(BSTR) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::IsSigned(BSTR) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::AddRecipDERCert(BSTR) { return E_NOTIMPL; }
STDMETHODIMP pkiobj::FreeRecipCerts() { return E_NOTIMPL; }
