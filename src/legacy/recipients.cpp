// The recipient list's methods: certificates found by address, selected by the user or given in DER.
#include <cstring>

#include "legacy/addresses.h"
#include "legacy/periods.h"
#include "legacy/pkiobj.h"
#include "legacy/thread_ansi.h"

namespace {

// Win32 numbers with the severity bit alone: older clients compare them, so they are not the usual HRESULTs.
constexpr HRESULT kInvalidParameter = static_cast<HRESULT>(0x80000057);
constexpr HRESULT kNotEnoughMemory = static_cast<HRESULT>(0x80000008);
// A certificate outside its validity period.
constexpr HRESULT kOutsideValidity = static_cast<HRESULT>(0xE0700036);
// The engine has already asked the user, who declined.
constexpr int32_t kSelectionCancelled = static_cast<int32_t>(0xE072008A);

/// How QUIVO_VerifyCert checks a recipient's certificate.
constexpr uint32_t kVerifyRecipient = 5;

/// Moves what a search has found into the list. The array goes back to the engine, the records stay.
HRESULT AppendFound(EngineSession session, const FindResultRecord& found, RecipientList& recipients) {
  if (!found.certificates) return kInvalidParameter;
  int32_t count = found.count > 0 ? found.count : 0;
  CertificateRecord* room = count > 0 ? recipients.reserve(count) : nullptr;
  for (int32_t i = 0; i < count; ++i) {
    if (room)
      room[i] = found.certificates[i];
    else
      QUIVO_FreeCert(session, &found.certificates[i]);
  }
  if (room) recipients.add(count);
  QUIVO_FreeMem(session, found.certificates);
  return room || count == 0 ? S_OK : kNotEnoughMemory;
}

/// The recipients of one address. Where the address finds nobody, the user selects.
HRESULT AppendRecipientsOf(EngineSession session, const RecipientAddress& address, RecipientList& recipients) {
  if (!address.address) return kInvalidParameter;
  FindParamRecord search = SearchFor(address);
  FindResultRecord found{};
  int32_t code = QUIVO_FindCert(session, &search, &found);
  if (code < 0 && code != kSelectionCancelled) {
    LetUserSelect(search);
    found = {};
    code = QUIVO_FindCert(session, &search, &found);
  }
  if (code < 0) return code;
  HRESULT hr = AppendFound(session, found, recipients);
  return FAILED(hr) ? hr : code;
}

HRESULT AppendSelected(EngineSession session, RecipientList& recipients) {
  FindParamRecord search = SearchBySelection();
  FindResultRecord found{};
  int32_t code = QUIVO_FindCert(session, &search, &found);
  return code < 0 ? code : AppendFound(session, found, recipients);
}

/// S_OK for a certificate that verifies and is valid now; nothing is kept.
HRESULT CheckRecipient(EngineSession session, const DataBlob_t& encoded) {
  VerifyCertParamRecord param{};
  param.mode = kVerifyRecipient;
  param.info = Field_Subject | Field_NotBefore | Field_NotAfter | Field_NotBeforePrivate | Field_NotAfterPrivate;
  CertificateRecord record{};
  int32_t code = QUIVO_VerifyCert(session, &param, &encoded, &record);
  uint32_t now = SecondsNow();
  bool isValid = record.notBefore <= now && now < record.notAfter;
  QUIVO_FreeCert(session, &record);
  if (code != 0) return code;
  return isValid ? S_OK : kOutsideValidity;
}

}  // namespace

STDMETHODIMP pkiobj::SetRecipients(BSTR addresses) {
  ThreadAnsi list(addresses);
  if (!list) return E_OUTOFMEMORY;
  Ipkiobj* self = this;
  self->FreeRecipCerts();
  AddressList entries(list.inPlace());
  if (entries.isEmpty()) return AppendSelected(session_, recipients_);
  HRESULT hr = S_OK;
  do {
    hr = AppendRecipientsOf(session_, entries.takeLast(), recipients_);
  } while (SUCCEEDED(hr) && !entries.isEmpty());
  return hr;
}

STDMETHODIMP pkiobj::AddRecipDERCert(BSTR cert) {
  if (!cert) return kInvalidParameter;
  DataBlob_t encoded{SysStringByteLen(cert), reinterpret_cast<uint8_t*>(cert)};
  HRESULT hr = CheckRecipient(session_, encoded);
  if (hr != S_OK) return hr;
  CertificateRecord* record = recipients_.reserve(1);
  if (!record) return kNotEnoughMemory;
  // From the engine, which frees it with the record.
  void* copy = QUIVO_AllocMem(session_, encoded.len);
  if (!copy) return kNotEnoughMemory;
  std::memcpy(copy, encoded.data, encoded.len);
  record->fields = Field_CertEncoded;
  record->certEncoded = {encoded.len, static_cast<uint8_t*>(copy)};
  recipients_.add(1);
  return S_OK;
}

STDMETHODIMP pkiobj::FreeRecipCerts() {
  recipients_.release(session_);
  return S_OK;
}
