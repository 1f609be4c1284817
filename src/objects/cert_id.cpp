#include "objects/cert_id.h"

#include "objects/members.h"

using objects::Reset;

void CertId::setType(int32_t type) {
  if (type != record_.type) {
    switch (record_.type) {
      case Id_Issuer_And_Serial:
        Reset(record_.issuerAndSerial.issuer);
        Reset(record_.issuerAndSerial.serialNumber);
        break;
      case Id_KeyId:
        Reset(record_.keyId);
        break;
      case Id_CertHash:
        Reset(record_.certHash);
        break;
    }
  }
  record_.type = type;
}

STDMETHODIMP CertId::get_type(IdChoice_t* value) { return getNumber(record_.type, value); }
STDMETHODIMP CertId::put_type(IdChoice_t value) {
  setType(static_cast<int32_t>(value));
  return S_OK;
}

STDMETHODIMP CertId::get_issuer(BSTR* value) {
  return getText(is(Id_Issuer_And_Serial) ? record_.issuerAndSerial.issuer : nullptr, value);
}
STDMETHODIMP CertId::put_issuer(BSTR value) {
  return is(Id_Issuer_And_Serial) ? putText(record_.issuerAndSerial.issuer, value) : E_INVALIDARG;
}

STDMETHODIMP CertId::get_serialNumber(BSTR* value) {
  return getText(is(Id_Issuer_And_Serial) ? record_.issuerAndSerial.serialNumber : nullptr, value);
}
STDMETHODIMP CertId::put_serialNumber(BSTR value) {
  return is(Id_Issuer_And_Serial) ? putText(record_.issuerAndSerial.serialNumber, value) : E_INVALIDARG;
}

STDMETHODIMP CertId::get_keyId(BSTR* value) { return getText(is(Id_KeyId) ? record_.keyId : nullptr, value); }
STDMETHODIMP CertId::put_keyId(BSTR value) { return is(Id_KeyId) ? putText(record_.keyId, value) : E_INVALIDARG; }

STDMETHODIMP CertId::get_certHash(VARIANT* value) {
  return getBytes(is(Id_CertHash) ? record_.certHash : DataBlob_t{}, value);
}
STDMETHODIMP CertId::put_certHash(VARIANT value) {
  return is(Id_CertHash) ? putBytes(record_.certHash, value) : E_INVALIDARG;
}
