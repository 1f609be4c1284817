// Certificate: what the engine tells of a certificate, or a template, receiver or request that a script fills.
#pragma once

#include "com/object.h"
#include "engine/records.h"
#include "objects/alt_name.h"
#include "objects/extension.h"
#include "objects/fields.h"
#include "objects/held.h"
#include "objects/object_array.h"
#include "objects/policy.h"
#include "quivocom.h"

class Certificate : public com::Object<ICertificate> {
 public:
  using Record = CertificateRecord;

  ~Certificate();

  STDMETHODIMP get_fields(Certinfo_t* value) override { return GetValue(record_.fields, value); }
  STDMETHODIMP put_fields(Certinfo_t value) override { return PutValue(record_.fields, value); }
  STDMETHODIMP get_issuer(BSTR* value) override { return GetString(record_.issuer, value); }
  STDMETHODIMP put_issuer(BSTR value) override { return PutString(record_.issuer, value); }
  STDMETHODIMP get_serialNumber(BSTR* value) override { return GetString(record_.serialNumber, value); }
  STDMETHODIMP put_serialNumber(BSTR value) override { return PutString(record_.serialNumber, value); }
  STDMETHODIMP get_subject(BSTR* value) override { return GetString(record_.subject, value); }
  STDMETHODIMP put_subject(BSTR value) override { return PutString(record_.subject, value); }
  STDMETHODIMP get_notBefore(DATE* value) override { return GetTime(record_.notBefore, value); }
  STDMETHODIMP put_notBefore(DATE value) override { return PutStartTime(record_.notBefore, record_.notAfter, value); }
  STDMETHODIMP get_notAfter(DATE* value) override { return GetTime(record_.notAfter, value); }
  STDMETHODIMP put_notAfter(DATE value) override { return PutTime(record_.notAfter, value); }
  STDMETHODIMP get_issuerUID(BSTR* value) override { return GetString(record_.issuerUID, value); }
  STDMETHODIMP put_issuerUID(BSTR value) override { return PutString(record_.issuerUID, value); }
  STDMETHODIMP get_subjectUID(BSTR* value) override { return GetString(record_.subjectUID, value); }
  STDMETHODIMP put_subjectUID(BSTR value) override { return PutString(record_.subjectUID, value); }
  STDMETHODIMP get_keyUsage(Keyusage_t* value) override { return GetValue(record_.keyUsage, value); }
  STDMETHODIMP put_keyUsage(Keyusage_t value) override { return PutValue(record_.keyUsage, value); }
  STDMETHODIMP get_notBeforePrivate(DATE* value) override { return GetTime(record_.notBeforePrivate, value); }
  STDMETHODIMP put_notBeforePrivate(DATE value) override {
    return PutStartTime(record_.notBeforePrivate, record_.notAfterPrivate, value);
  }
  STDMETHODIMP get_notAfterPrivate(DATE* value) override { return GetTime(record_.notAfterPrivate, value); }
  STDMETHODIMP put_notAfterPrivate(DATE value) override { return PutTime(record_.notAfterPrivate, value); }
  STDMETHODIMP get_issuerAltName(IAltName** value) override { return issuerAltName_.get(value); }
  STDMETHODIMP putref_issuerAltName(IAltName* value) override { return issuerAltName_.put(value); }
  STDMETHODIMP get_subjectAltName(IAltName** value) override { return subjectAltName_.get(value); }
  STDMETHODIMP putref_subjectAltName(IAltName* value) override { return subjectAltName_.put(value); }
  STDMETHODIMP get_keyId(BSTR* value) override { return GetString(record_.keyId, value); }
  STDMETHODIMP put_keyId(BSTR value) override { return PutString(record_.keyId, value); }
  STDMETHODIMP get_policies(VARIANT* value) override { return policies_.get(value); }
  STDMETHODIMP put_policies(VARIANT value) override { return policies_.put(value); }
  STDMETHODIMP get_extKeyUsage(VARIANT* value) override {
    return GetStrings(record_.extKeyUsage, record_.extKeyUsageCount, value);
  }
  STDMETHODIMP put_extKeyUsage(VARIANT value) override {
    return PutStrings(record_.extKeyUsage, record_.extKeyUsageCount, value);
  }
  STDMETHODIMP get_extensions(VARIANT* value) override { return extensions_.get(value); }
  STDMETHODIMP put_extensions(VARIANT value) override { return extensions_.put(value); }
  STDMETHODIMP get_certEncoded(VARIANT* value) override { return GetBytes(record_.certEncoded, value); }
  STDMETHODIMP put_certEncoded(VARIANT value) override { return PutBytes(record_.certEncoded, value); }
  STDMETHODIMP get_certHash(VARIANT* value) override { return GetBytes(record_.certHash, value); }
  STDMETHODIMP put_certHash(VARIANT value) override { return PutBytes(record_.certHash, value); }
  STDMETHODIMP get_algorithm(BSTR* value) override { return GetString(record_.algorithm, value); }
  STDMETHODIMP put_algorithm(BSTR value) override { return PutString(record_.algorithm, value); }

  /// The record as the engine is to see it now, valid until the object or a part of it changes. What comes
  /// from other objects is copied again at each call.
  const CertificateRecord* record();
  /// Replaces the plain fields, not the parts that are objects, by copies of an engine record. E_OUTOFMEMORY.
  HRESULT copyFieldsFrom(const CertificateRecord& from);

 private:
  CertificateRecord record_{};
  Held<AltName> issuerAltName_;
  Held<AltName> subjectAltName_;
  ObjectArray<Policy> policies_;
  ObjectArray<Extension> extensions_;
};

/// Builds a new Certificate from an engine record; a null record gives a null certificate. The engine record
/// stays the caller's; the result refers to nothing of it. Fails as CoCreateInstance does, or with
/// E_OUTOFMEMORY; `out` is then null.
HRESULT CertificateFromRecord(const CertificateRecord* record, ICertificate** out);
