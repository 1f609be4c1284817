#include "standin/operations/transfer.h"

#include <windows.h>

#include <openssl/pem.h>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/certificates/cert_id.h"
#include "standin/certificates/der_objects.h"
#include "standin/certificates/names.h"
#include "standin/operations/requests.h"
#include "standin/windows/display.h"
#include "standin/windows/selection_dialog.h"

namespace standin {
namespace {

constexpr uint32_t kExportTokens = kExportEtokenGost | kExportRutokenGost | kExportGost2001 | kExportGost2012;

void RequireOwn(const Session& session, const CertIdRecord* id) {
  if (NamesCertificate(id)) session.keys.pick(id, KeyPurpose::kAny);
}

Bytes PemOf(const char* label, ByteView der) {
  const BioPtr out(BIO_new(BIO_s_mem()));
  if (out == nullptr || PEM_write_bio(out.get(), label, "", der.data(), static_cast<long>(der.size())) <= 0) {
    Fail(kWinOutOfMemory);
  }
  char* text = nullptr;
  const long length = BIO_get_mem_data(out.get(), &text);
  return Bytes(text, text + length);
}

CertPtr NamedCertificate(const Session& session, const CertIdRecord& id) {
  for (CertPtr& certificate : session.knownCertificates(TermOf(id))) {
    if (Matches(certificate.get(), id)) return std::move(certificate);
  }
  return nullptr;
}

/// The whole store in a signed message without signers.
Bytes StoreAsMessage(const Session& session) {
  const std::vector<CertPtr> certificates = session.knownCertificates();
  if (certificates.empty() && session.store.crls().all().empty()) Fail(kNothingToExport);
  const CmsPtr message(CMS_sign(nullptr, nullptr, nullptr, nullptr, CMS_PARTIAL | CMS_DETACHED));
  if (message == nullptr) Fail(kWinOutOfMemory);
  for (const CertPtr& certificate : certificates) CMS_add1_cert(message.get(), certificate.get());
  for (const auto& crl : session.store.crls().all()) {
    if (crl->get() != nullptr) CMS_add1_crl(message.get(), crl->get());
  }
  return DerOf(message.get());
}

CertPtr ChosenCertificate(const Session& session, const SignParamRecord& param) {
  if ((param.flag & kExportUI) != 0) return std::move(SelectCertificates(session.knownCertificates()).front());
  if (!NamesCertificate(param.mycert)) return nullptr;
  CertPtr certificate = NamedCertificate(session, *param.mycert);
  if (certificate == nullptr) Fail(kNothingToExport);
  return certificate;
}

void ConfirmImport(const FoundObjects& found) {
  RequireDisplay();
  std::wstring text = L"Добавить в справочник?";
  for (const CertPtr& certificate : found.certificates) {
    text += L"\n" + WideFromUtf8(NameText(X509_get_subject_name(certificate.get())));
  }
  for (const CrlPtr& crl : found.crls) {
    text += L"\nСписок отозванных: " + WideFromUtf8(NameText(X509_CRL_get_issuer(crl.get())));
  }
  const int answer =
      MessageBoxW(GetActiveWindow(), text.c_str(), L"Импорт сертификатов", MB_OKCANCEL | MB_ICONQUESTION);
  if (answer != IDOK) Fail(kSelectionCancelled);
}

/// Without a flag for a kind, all kinds are wanted.
FoundObjects WantedObjects(FoundObjects found, uint32_t flags) {
  const bool any = (flags & (kImportCertificate | kImportCrl | kImportMyCertificate)) == 0;
  if (!any && (flags & (kImportCertificate | kImportMyCertificate)) == 0) found.certificates.clear();
  if (!any && (flags & kImportCrl) == 0) found.crls.clear();
  if (found.certificates.empty() && found.crls.empty()) Fail(kNothingToImport);
  return found;
}

}  // namespace

void AddCertificate(Session& session, const SignParamRecord& addition, ByteView encoded) {
  RequireOwn(session, addition.mycert);
  FoundObjects found = ObjectsIn(encoded);
  if (found.certificates.size() != 1 || !found.crls.empty()) Fail(kCertificateDamaged);
  session.addCertificate(found.certificates.front().get());
}

void AddCrl(Session& session, const SignParamRecord& addition, ByteView encoded) {
  RequireOwn(session, addition.mycert);
  FoundObjects found = ObjectsIn(encoded);
  if (found.crls.size() != 1 || !found.certificates.empty()) Fail(kCrlDamaged);
  session.store.add(found.crls.front().get());
}

Bytes ExportObjects(Session& session, const SignParamRecord& param) {
  if ((param.flag & (kExportTokens | kExportRevRequest)) != 0) Fail(kNotSupported);
  const bool asDer = (param.flag & kExportAsn1) != 0;
  if ((param.flag & kExportNewRequest) != 0) {
    const Bytes request = NewestRequest(session.store);
    return asDer ? request : PemOf(PEM_STRING_X509_REQ, request);
  }
  const CertPtr certificate = ChosenCertificate(session, param);
  if (certificate == nullptr) {
    const Bytes message = StoreAsMessage(session);
    return asDer ? message : PemOf(PEM_STRING_PKCS7, message);
  }
  const Bytes der = DerOf(certificate.get());
  return asDer ? der : PemOf(PEM_STRING_X509, der);
}

void ImportObjects(Session& session, const SignParamRecord& param, ByteView bytes) {
  RequireOwn(session, param.mycert);
  const FoundObjects found = WantedObjects(ObjectsInBundle(bytes), param.flag);
  if ((param.flag & kImportMyCertificate) != 0) {
    for (const CertPtr& certificate : found.certificates) {
      if (!session.keys.hasKeyOf(certificate.get())) Fail(kKeyDoesNotMatch);
    }
  }
  if ((param.flag & kImportUI) != 0) ConfirmImport(found);
  for (const CertPtr& certificate : found.certificates) session.addCertificate(certificate.get());
  for (const CrlPtr& crl : found.crls) {
    try {
      session.store.add(crl.get());
    } catch (const EngineError& error) {
      // An update skips lists that are older than the store's.
      if (error.code != kCrlOlder || (param.flag & kImportUpdate) == 0) throw;
    }
  }
}

}  // namespace standin
