// The recipient list's methods: certificates found by address, selected by the user or given in DER.
#include <cstring>

#include "engine/codes.h"
#include "engine/owned.h"
#include "legacy/periods.h"
#include "legacy/pkiobj.h"
#include "legacy/thread_ansi.h"

using namespace legacy;

namespace {

// On purpose not the usual HRESULTs: "Codes with the severity bit alone" in docs/behaviour.md.
constexpr HRESULT kInvalidParameter = static_cast<HRESULT>(0x80000057);
constexpr HRESULT kNotEnoughMemory = static_cast<HRESULT>(0x80000008);

/// How QUIVO_VerifyCert checks a recipient's certificate.
constexpr uint32_t kVerifyRecipient = 5;

/// S_OK for a certificate that verifies and is valid now; nothing is kept.
HRESULT CheckRecipient(EngineSession session, const DataBlob_t& encoded) {
  VerifyCertParamRecord param{};
  param.mode = kVerifyRecipient;
  param.info = Field_Subject | Field_NotBefore | Field_NotAfter | Field_NotBeforePrivate | Field_NotAfterPrivate;
  engine::CertificateResult record(session);
  int32_t code = QUIVO_VerifyCert(session, &param, &encoded, record.receive());
  uint32_t now = SecondsNow();
  bool isValid = record.get().notBefore <= now && now < record.get().notAfter;
  if (code != 0) return code;
  return isValid ? S_OK : engine::kOutsideValidity;
}

}  // namespace

/// Puts records that the engine has handed out into the list, or gives them back. S_FALSE if the list no longer takes
/// what this call brings.
HRESULT pkiobj::takeRecipients(const Call& call, CertificateRecord* records, int32_t count) {
  bool isWanted = takesRecipients(call);
  if (isWanted && recipients_.reserve(count)) {
    recipients_.add(call.session(), records, count);
    return S_OK;
  }
  for (int32_t i = 0; i < count; ++i) QUIVO_FreeCert(call.session(), &records[i]);
  return isWanted ? kNotEnoughMemory : S_FALSE;
}

/// Takes over what a search has found. The array goes back to the engine, the records stay.
HRESULT pkiobj::takeFound(const Call& call, const FindResultRecord& found) {
  if (!found.certificates) return kInvalidParameter;
  HRESULT hr = takeRecipients(call, found.certificates, found.count);
  QUIVO_FreeMem(call.session(), found.certificates);
  return hr;
}

/// The recipients of one address. Where the address finds nobody, the user selects.
HRESULT pkiobj::takeRecipientsOf(const Call& call, const RecipientAddress& address) {
  if (!address.address) return kInvalidParameter;
  FindParamRecord search = SearchFor(address);
  FindResultRecord found{};
  int32_t code = QUIVO_FindCert(call.session(), &search, &found);
  if (code < 0 && code != engine::kSelectionCancelled) {
    LetUserSelect(search);
    found = {};
    code = QUIVO_FindCert(call.session(), &search, &found);
  }
  if (code < 0) return code;
  HRESULT hr = takeFound(call, found);
  return hr == S_OK ? code : hr;
}

HRESULT pkiobj::takeSelected(const Call& call) {
  FindParamRecord search = SearchBySelection();
  FindResultRecord found{};
  int32_t code = QUIVO_FindCert(call.session(), &search, &found);
  return code < 0 ? code : takeFound(call, found);
}

STDMETHODIMP pkiobj::SetRecipients(BSTR addresses) {
  Call call(*this);
  ThreadAnsi list(addresses);
  if (!list) return E_OUTOFMEMORY;
  Ipkiobj* self = this;
  self->FreeRecipCerts();
  AddressList entries(list.inPlace());
  if (entries.isEmpty()) return takeSelected(call);
  HRESULT hr = S_OK;
  do {
    hr = takeRecipientsOf(call, entries.takeLast());
  } while (SUCCEEDED(hr) && takesRecipients(call) && !entries.isEmpty());
  return hr;
}

STDMETHODIMP pkiobj::AddRecipDERCert(BSTR cert) {
  if (!cert) return kInvalidParameter;
  Call call(*this);
  DataBlob_t encoded{SysStringByteLen(cert), reinterpret_cast<uint8_t*>(cert)};
  HRESULT hr = CheckRecipient(call.session(), encoded);
  if (hr != S_OK) return hr;
  if (!recipients_.reserve(1)) return kNotEnoughMemory;
  // From the engine, which frees it with the record.
  void* copy = QUIVO_AllocMem(call.session(), encoded.len);
  if (!copy) return kNotEnoughMemory;
  std::memcpy(copy, encoded.data, encoded.len);
  CertificateRecord record{};
  record.fields = Field_CertEncoded;
  record.certEncoded = {encoded.len, static_cast<uint8_t*>(copy)};
  return takeRecipients(call, &record, 1);
}

STDMETHODIMP pkiobj::FreeRecipCerts() {
  Call call(*this);
  recipients_.release();
  return S_OK;
}
