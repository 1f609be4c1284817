// Certificate: what the engine reports of a certificate, or a template, receiver or request that a script fills.
#pragma once

#include "objects/alt_name.h"
#include "objects/extension.h"
#include "objects/held.h"
#include "objects/object_array.h"
#include "objects/policy.h"

class Certificate : public objects::RecordObject<ICertificate, CertificateRecord> {
 public:
  STDMETHODIMP get_fields(Certinfo_t* value) override { return getNumber(record_.fields, value); }
  STDMETHODIMP put_fields(Certinfo_t value) override { return putNumber(record_.fields, value); }
  STDMETHODIMP get_issuer(BSTR* value) override { return getText(record_.issuer, value); }
  STDMETHODIMP put_issuer(BSTR value) override { return putText(record_.issuer, value); }
  STDMETHODIMP get_serialNumber(BSTR* value) override { return getText(record_.serialNumber, value); }
  STDMETHODIMP put_serialNumber(BSTR value) override { return putText(record_.serialNumber, value); }
  STDMETHODIMP get_subject(BSTR* value) override { return getText(record_.subject, value); }
  STDMETHODIMP put_subject(BSTR value) override { return putText(record_.subject, value); }
  STDMETHODIMP get_notBefore(DATE* value) override { return getTime(record_.notBefore, value); }
  STDMETHODIMP put_notBefore(DATE value) override { return putStartTime(record_.notBefore, record_.notAfter, value); }
  STDMETHODIMP get_notAfter(DATE* value) override { return getTime(record_.notAfter, value); }
  STDMETHODIMP put_notAfter(DATE value) override { return putTime(record_.notAfter, value); }
  STDMETHODIMP get_issuerUID(BSTR* value) override { return getText(record_.issuerUID, value); }
  STDMETHODIMP put_issuerUID(BSTR value) override { return putText(record_.issuerUID, value); }
  STDMETHODIMP get_subjectUID(BSTR* value) override { return getText(record_.subjectUID, value); }
  STDMETHODIMP put_subjectUID(BSTR value) override { return putText(record_.subjectUID, value); }
  STDMETHODIMP get_keyUsage(Keyusage_t* value) override { return getNumber(record_.keyUsage, value); }
  STDMETHODIMP put_keyUsage(Keyusage_t value) override { return putNumber(record_.keyUsage, value); }
  STDMETHODIMP get_notBeforePrivate(DATE* value) override { return getTime(record_.notBeforePrivate, value); }
  STDMETHODIMP put_notBeforePrivate(DATE value) override {
    return putStartTime(record_.notBeforePrivate, record_.notAfterPrivate, value);
  }
  STDMETHODIMP get_notAfterPrivate(DATE* value) override { return getTime(record_.notAfterPrivate, value); }
  STDMETHODIMP put_notAfterPrivate(DATE value) override { return putTime(record_.notAfterPrivate, value); }
  STDMETHODIMP get_issuerAltName(IAltName** value) override { return issuerAltName_.get(value); }
  STDMETHODIMP putref_issuerAltName(IAltName* value) override { return issuerAltName_.put(value); }
  STDMETHODIMP get_subjectAltName(IAltName** value) override { return subjectAltName_.get(value); }
  STDMETHODIMP putref_subjectAltName(IAltName* value) override { return subjectAltName_.put(value); }
  STDMETHODIMP get_keyId(BSTR* value) override { return getText(record_.keyId, value); }
  STDMETHODIMP put_keyId(BSTR value) override { return putText(record_.keyId, value); }
  STDMETHODIMP get_policies(VARIANT* value) override { return policies_.get(value); }
  STDMETHODIMP put_policies(VARIANT value) override { return policies_.put(value); }
  STDMETHODIMP get_extKeyUsage(VARIANT* value) override {
    return getTexts(record_.extKeyUsage, record_.extKeyUsageCount, value);
  }
  STDMETHODIMP put_extKeyUsage(VARIANT value) override {
    return putTexts(record_.extKeyUsage, record_.extKeyUsageCount, value);
  }
  STDMETHODIMP get_extensions(VARIANT* value) override { return extensions_.get(value); }
  STDMETHODIMP put_extensions(VARIANT value) override { return extensions_.put(value); }
  STDMETHODIMP get_certEncoded(VARIANT* value) override { return getBytes(record_.certEncoded, value); }
  STDMETHODIMP put_certEncoded(VARIANT value) override { return putBytes(record_.certEncoded, value); }
  STDMETHODIMP get_certHash(VARIANT* value) override { return getBytes(record_.certHash, value); }
  STDMETHODIMP put_certHash(VARIANT value) override { return putBytes(record_.certHash, value); }
  STDMETHODIMP get_algorithm(BSTR* value) override { return getText(record_.algorithm, value); }
  STDMETHODIMP put_algorithm(BSTR value) override { return putText(record_.algorithm, value); }

  /// What comes from other objects is copied again at each call.
  const CertificateRecord* record();

 private:
  objects::Held<AltName> issuerAltName_;
  objects::Held<AltName> subjectAltName_;
  objects::ObjectArray<Policy> policies_;
  objects::ObjectArray<Extension> extensions_;
};

namespace objects {

/// Builds a new Certificate from an engine record. The engine record
/// stays the caller's; the result refers to nothing of it. Fails as CoCreateInstance does, or with
/// E_OUTOFMEMORY; `out` is then null.
HRESULT CertificateFromRecord(const CertificateRecord& record, ICertificate** out);

}  // namespace objects
