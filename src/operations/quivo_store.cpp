// Certificates and revocation lists: search, decoding, display, additions, export and import.
#include "objects/cert_id.h"
#include "objects/certificate.h"
#include "objects/find_param.h"
#include "objects/operation_params.h"
#include "operations/steps.h"

using namespace operations;
using objects::CertificateFromRecord;

namespace {

/// An array of new Certificate objects, one per record. On failure nothing is left behind.
HRESULT NewCertificateArray(const FindResultRecord& found, com::Array& array) {
  LONG count = found.certificates && found.count > 0 ? found.count : 0;
  array.reset(SafeArrayCreateVector(VT_DISPATCH, 0, static_cast<ULONG>(count)));
  if (!array) return E_OUTOFMEMORY;
  for (LONG i = 0; i < count; ++i) {
    com::Ref<ICertificate> certificate;
    HRESULT hr = CertificateFromRecord(found.certificates[i], certificate.receive());
    if (SUCCEEDED(hr)) hr = SafeArrayPutElement(array.get(), &i, certificate.get());
    if (FAILED(hr)) return hr;
  }
  return S_OK;
}

}  // namespace

STDMETHODIMP QUIVO::FindCert(IFindParam* pIFindParam, VARIANT* FindResult) {
  FindParam* options = com::Own<FindParam>(pIFindParam);
  if (!options || !FindResult) return E_QUIVO_INVALID_ARGUMENT;
  SessionUse session(owner());
  engine::FindResult found(session);
  if (int32_t code = QUIVO_FindCert(session, options->record(), found.receive())) {
    found.leave();
    return ToModuleHResult(code);
  }
  com::Array array;
  HRESULT hr = NewCertificateArray(found.get(), array);
  found.giveBack();
  return ToModuleHResult(FAILED(hr) ? hr : com::SetArray(FindResult, VT_DISPATCH, std::move(array)));
}

STDMETHODIMP QUIVO::ParseCert(VARIANT enccert, Certinfo_t info, ICertificate** pICertificate) {
  if (!pICertificate) return E_QUIVO_INVALID_ARGUMENT;
  convert::ByteInput encoded;
  HRESULT hr = ReadByteVariant(enccert, encoded);
  if (FAILED(hr)) return ToModuleHResult(hr);
  SessionUse session(owner());
  engine::CertificateResult record(session);
  int32_t code = QUIVO_ParseCert(session, encoded.blob(), static_cast<uint32_t>(info), record.receive());
  HRESULT released = encoded.release();
  if (code != 0) {
    record.leave();
    return ToModuleHResult(code);
  }
  hr = CertificateFromRecord(record.get(), pICertificate);
  return ToModuleHResult(FirstFailure(released, hr));
}

STDMETHODIMP QUIVO::ShowCertificate(VARIANT enccert) {
  return ConsumeBytes(owner(), enccert, [&](EngineSession session, const DataBlob_t* encoded) {
    return QUIVO_ShowCertificate(session, encoded);
  });
}

STDMETHODIMP QUIVO::ShowCrl(VARIANT encCrl) {
  return ConsumeBytes(owner(), encCrl, [&](EngineSession session, const DataBlob_t* encoded) {
    return QUIVO_ShowCrl(session, encoded);
  });
}

namespace {

/// AddCertificate and AddCRL: the engine gets a record of its own that names the caller's certificate.
HRESULT AddWith(decltype(QUIVO_AddCertificate) engineAdd, QUIVO& quivo, ICertId* mycert, const VARIANT& added) {
  CertId* id = com::Own<CertId>(mycert);
  if (mycert && !id) return E_QUIVO_INVALID_ARGUMENT;
  SignParamRecord addition{0, id ? id->record() : nullptr};
  return ConsumeBytes(quivo.owner(), added, [&](EngineSession session, const DataBlob_t* encoded) {
    return engineAdd(session, &addition, encoded);
  });
}

}  // namespace

STDMETHODIMP QUIVO::AddCertificate(ICertId* mycert, VARIANT newcert) {
  return AddWith(QUIVO_AddCertificate, *this, mycert, newcert);
}

STDMETHODIMP QUIVO::AddCRL(ICertId* mycert, VARIANT crl) { return AddWith(QUIVO_AddCRL, *this, mycert, crl); }

STDMETHODIMP QUIVO::ExportMem(IExportParam* pIParam, VARIANT* out, VARIANT_BOOL bVBS) {
  ExportParam* options = com::Own<ExportParam>(pIParam);
  if (!options) return E_QUIVO_INVALID_ARGUMENT;
  return ProduceBytes(owner(), bVBS != 0, out, [&](EngineSession session, DataBlob_t* bytes) {
    return QUIVO_ExportMem(session, options->record(), bytes);
  });
}

STDMETHODIMP QUIVO::ImportMem(IImportParam* pIParam, VARIANT in) {
  ImportParam* options = com::Own<ImportParam>(pIParam);
  if (!options) return E_QUIVO_INVALID_ARGUMENT;
  return ConsumeBytes(owner(), in, [&](EngineSession session, const DataBlob_t* bytes) {
    return QUIVO_ImportMem(session, options->record(), bytes);
  });
}

namespace {

template <class Param, class Interface>
HRESULT MoveFileWith(decltype(QUIVO_ExportFile) engineMove, QUIVO& quivo, Interface* param, BSTR file) {
  if (quivo.isUntrusted()) return E_QUIVO_ACCESS_DENIED;
  Param* options = com::Own<Param>(param);
  if (!options) return E_QUIVO_INVALID_ARGUMENT;
  AnsiArguments<1> paths(Required{file});
  if (FAILED(paths.failure())) return paths.failure();
  SessionUse session(quivo.owner());
  return ToModuleHResult(engineMove(session, options->record(), paths.get<0>()));
}

}  // namespace

STDMETHODIMP QUIVO::ExportFile(IExportParam* pIParam, BSTR file_out) {
  return MoveFileWith<ExportParam>(QUIVO_ExportFile, *this, pIParam, file_out);
}

STDMETHODIMP QUIVO::ImportFile(IImportParam* pIParam, BSTR file_in) {
  return MoveFileWith<ImportParam>(QUIVO_ImportFile, *this, pIParam, file_in);
}
