// Certificate requests, and the check of the own certificate's extended key usages.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "objects/certificate.h"
#include "operations/own_certificate.h"
#include "operations/steps.h"

using namespace operations;

STDMETHODIMP QUIVO::CreateXmlRequest(XmlRequest_Flag_t flag, ICertificate* pICertTempl, VARIANT* pXmlReq,
                                     VARIANT_BOOL bVBS) {
  Certificate* certificate = com::Own<Certificate>(pICertTempl);
  if (!certificate) return E_QUIVO_INVALID_ARGUMENT;
  return ProduceBytes(owner(), bVBS != 0, pXmlReq, [&](EngineSession session, DataBlob_t* request) {
    return QUIVO_CreateXmlRequest(session, static_cast<uint32_t>(flag), certificate->record(), request);
  });
}

namespace {

bool CarriesUsage(const CertificateRecord& certificate, const char* oid) {
  int32_t count = certificate.extKeyUsage ? certificate.extKeyUsageCount : 0;
  for (int32_t i = 0; i < count; ++i)
    if (certificate.extKeyUsage[i] && std::strcmp(certificate.extKeyUsage[i], oid) == 0) return true;
  return false;
}

}  // namespace

STDMETHODIMP QUIVO::CheckOID(BSTR oid, VARIANT* var_err_text) {
  OwnCertificateSearch search(owner());
  constexpr size_t kSize = 1022;
  char text[kSize];
  // By the locale of the process, not the ANSI code page, on purpose: "The texts of CheckOID" in docs/behaviour.md.
  size_t length = oid ? std::wcstombs(text, oid, kSize) : static_cast<size_t>(-1);
  if (length >= kSize) {
    ReturnText(L"Ошибка преобразования BSTR", var_err_text);
    return E_FAIL;
  }
  if (int32_t code = search.run(Field_ExtKeyUsage)) {
    GetPKIErrorTextVBS(code, var_err_text);
    return E_FAIL;
  }
  if (search.count() != 1) {
    ReturnText(L"Не найден рабочий сертификат", var_err_text);
    return E_FAIL;
  }
  if (CarriesUsage(search.first(), text)) return S_OK;
  wchar_t message[1325] = {};
  _snwprintf(message, 1324, L"OID %ls отсутствует в рабочем сертификате", oid);
  ReturnText(message, var_err_text);
  return E_FAIL;
}
