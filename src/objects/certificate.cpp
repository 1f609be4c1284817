#include "objects/certificate.h"

#include "objects/create_object.h"

const CertificateRecord* Certificate::record() {
  if (AltName* name = issuerAltName_.object()) record_.issuerAltName = *name->record();
  if (AltName* name = subjectAltName_.object()) record_.subjectAltName = *name->record();
  policies_.refresh(record_.policies, record_.policyCount);
  extensions_.refresh(record_.extensions, record_.extensionCount);
  return &record_;
}

namespace objects {
namespace {

HRESULT NewAltName(const AltNameRecord& record, com::Ref<IAltName>& out) {
  AltName* name = nullptr;
  HRESULT hr = CreateObject(out, &name);
  return FAILED(hr) ? hr : name->copyFrom(record);
}

/// The value to assign for `count` parts: VT_EMPTY for none, else an array of new objects.
template <class Part>
HRESULT NewParts(const typename Part::Record* records, int32_t count, com::Variant& out) {
  if (!records || count <= 0) return S_OK;
  com::Array array(SafeArrayCreateVector(VT_DISPATCH, 0, static_cast<ULONG>(count)));
  if (!array) return E_OUTOFMEMORY;
  for (LONG i = 0; i < count; ++i) {
    com::Ref<typename Part::Primary> reference;
    Part* part = nullptr;
    HRESULT hr = CreateObject(reference, &part);
    if (SUCCEEDED(hr)) hr = part->copyFrom(records[i]);
    if (SUCCEEDED(hr)) hr = SafeArrayPutElement(array.get(), &i, reference.get());
    if (FAILED(hr)) return hr;
  }
  return com::SetArray(out.inOut(), VT_DISPATCH, std::move(array));
}

HRESULT Fill(Certificate& certificate, const CertificateRecord& record) {
  HRESULT hr = certificate.copyFrom(record);
  // Both alternative names exist whatever was asked of the engine: scripts read through them unchecked.
  com::Ref<IAltName> issuerName;
  if (SUCCEEDED(hr)) hr = NewAltName(record.issuerAltName, issuerName);
  if (SUCCEEDED(hr)) hr = certificate.putref_issuerAltName(issuerName.get());
  com::Ref<IAltName> subjectName;
  if (SUCCEEDED(hr)) hr = NewAltName(record.subjectAltName, subjectName);
  if (SUCCEEDED(hr)) hr = certificate.putref_subjectAltName(subjectName.get());
  com::Variant policies;
  if (SUCCEEDED(hr)) hr = NewParts<Policy>(record.policies, record.policyCount, policies);
  if (SUCCEEDED(hr)) hr = certificate.put_policies(policies.get());
  com::Variant extensions;
  if (SUCCEEDED(hr)) hr = NewParts<Extension>(record.extensions, record.extensionCount, extensions);
  if (SUCCEEDED(hr)) hr = certificate.put_extensions(extensions.get());
  return hr;
}

}  // namespace

HRESULT CertificateFromRecord(const CertificateRecord& record, ICertificate** out) {
  *out = nullptr;
  com::Ref<ICertificate> reference;
  Certificate* certificate = nullptr;
  HRESULT hr = CreateObject(reference, &certificate);
  if (SUCCEEDED(hr)) hr = Fill(*certificate, record);
  if (SUCCEEDED(hr)) *out = reference.detach();
  return hr;
}

}  // namespace objects
