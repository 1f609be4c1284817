#include "objects/sign_status.h"

#include "com/variant.h"
#include "objects/create_object.h"

namespace objects {
namespace {

HRESULT NewStatus(const SignStatusEntry& entry, com::Ref<ISignStatus>& out) {
  SignStatus* status = nullptr;
  HRESULT hr = CreateObject(out, &status);
  if (FAILED(hr)) return hr;
  status->setTime(entry.time);
  hr = status->put_status(entry.status);
  if (FAILED(hr) || !entry.cert) return hr;
  com::Ref<ICertificate> cert;
  hr = CertificateFromRecord(*entry.cert, cert.receive());
  return FAILED(hr) ? hr : status->putref_cert(cert.get());
}

HRESULT NewStatusArray(const VerifyResultRecord& result, com::Array& array) {
  LONG count = result.entries && result.count > 0 ? result.count : 0;
  array.reset(SafeArrayCreateVector(VT_DISPATCH, 0, static_cast<ULONG>(count)));
  if (!array) return E_OUTOFMEMORY;
  for (LONG i = 0; i < count; ++i) {
    com::Ref<ISignStatus> status;
    HRESULT hr = NewStatus(result.entries[i], status);
    if (SUCCEEDED(hr)) hr = SafeArrayPutElement(array.get(), &i, status.get());
    if (FAILED(hr)) return hr;
  }
  return S_OK;
}

}  // namespace

HRESULT SignStatusArrayFromResult(engine::VerifyResult* result, VARIANT* out) {
  if (!result) return VariantClear(out);
  com::Array array;
  HRESULT hr = NewStatusArray(result->get(), array);
  result->giveBack();
  return FAILED(hr) ? hr : com::SetArray(out, VT_DISPATCH, std::move(array));
}

}  // namespace objects
