// Import and export.
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

void requireOwn(const Session& session, const CertIdRecord* id) {
  if (namesCertificate(id)) session.keys.pick(id, KeyPurpose::kAny);
}

Bytes pemOf(const char* label, ByteView der) {
  const BioPtr out(BIO_new(BIO_s_mem()));
  if (out == nullptr || PEM_write_bio(out.get(), label, "", der.data(), static_cast<long>(der.size())) <= 0) {
    fail(kWinOutOfMemory);
  }
  char* text = nullptr;
  const long length = BIO_get_mem_data(out.get(), &text);
  return Bytes(text, text + length);
}

CertPtr namedCertificate(const Session& session, const CertIdRecord& id) {
  for (CertPtr& certificate : session.knownCertificates()) {
    if (matches(certificate.get(), id)) return std::move(certificate);
  }
  return nullptr;
}

/// A signed message without signers that carries everything the store has.
Bytes storeAsMessage(const Session& session) {
  const std::vector<CertPtr> certificates = session.knownCertificates();
  if (certificates.empty() && session.store.crls().empty()) fail(kNothingToExport);
  const CmsPtr message(CMS_sign(nullptr, nullptr, nullptr, nullptr, CMS_PARTIAL | CMS_DETACHED));
  if (message == nullptr) fail(kWinOutOfMemory);
  for (const CertPtr& certificate : certificates) CMS_add1_cert(message.get(), certificate.get());
  for (const CrlPtr& crl : session.store.crls()) CMS_add1_crl(message.get(), crl.get());
  unsigned char* der = nullptr;
  const int length = i2d_CMS_ContentInfo(message.get(), &der);
  if (length <= 0) fail(kInternal);
  const OctetsPtr owner(der);
  return Bytes(der, der + length);
}

CertPtr chosenCertificate(const Session& session, const SignParamRecord& param) {
  if ((param.flag & kExportUi) != 0) return std::move(selectCertificates(session.knownCertificates()).front());
  if (!namesCertificate(param.mycert)) return nullptr;
  CertPtr certificate = namedCertificate(session, *param.mycert);
  if (certificate == nullptr) fail(kNothingToExport);
  return certificate;
}

void confirmImport(const FoundObjects& found) {
  requireDisplay();
  std::wstring text = L"Добавить в справочник?";
  for (const CertPtr& certificate : found.certificates) {
    text += L"\n" + wideFromUtf8(nameText(X509_get_subject_name(certificate.get())));
  }
  for (const CrlPtr& crl : found.crls) {
    text += L"\nСписок отозванных: " + wideFromUtf8(nameText(X509_CRL_get_issuer(crl.get())));
  }
  const int answer =
      MessageBoxW(GetActiveWindow(), text.c_str(), L"Импорт сертификатов", MB_OKCANCEL | MB_ICONQUESTION);
  if (answer != IDOK) fail(kSelectionCancelled);
}

/// With no kind named, all kinds are wanted.
FoundObjects wantedObjects(FoundObjects found, uint32_t flags) {
  const bool any = (flags & (kImportCertificate | kImportCrl | kImportMyCertificate)) == 0;
  if (!any && (flags & (kImportCertificate | kImportMyCertificate)) == 0) found.certificates.clear();
  if (!any && (flags & kImportCrl) == 0) found.crls.clear();
  if (found.certificates.empty() && found.crls.empty()) fail(kNothingToImport);
  return found;
}

}  // namespace

void addCertificate(Session& session, const SignParamRecord& addition, ByteView encoded) {
  requireOwn(session, addition.mycert);
  FoundObjects found = objectsIn(encoded);
  if (found.certificates.size() != 1 || !found.crls.empty()) fail(kCertificateDamaged);
  session.addCertificate(found.certificates.front().get());
}

void addCrl(Session& session, const SignParamRecord& addition, ByteView encoded) {
  requireOwn(session, addition.mycert);
  FoundObjects found = objectsIn(encoded);
  if (found.crls.size() != 1 || !found.certificates.empty()) fail(kCrlDamaged);
  session.store.add(found.crls.front().get());
}

Bytes exportObjects(Session& session, const SignParamRecord& param) {
  if ((param.flag & (kExportTokens | kExportRevocationRequest)) != 0) fail(kNotSupported);
  const bool as_der = (param.flag & kExportDer) != 0;
  if ((param.flag & kExportNewRequest) != 0) {
    const Bytes request = newestRequest(session.store);
    return as_der ? request : pemOf(PEM_STRING_X509_REQ, request);
  }
  const CertPtr certificate = chosenCertificate(session, param);
  if (certificate == nullptr) {
    const Bytes message = storeAsMessage(session);
    return as_der ? message : pemOf(PEM_STRING_PKCS7, message);
  }
  const Bytes der = derOf(certificate.get());
  return as_der ? der : pemOf(PEM_STRING_X509, der);
}

void importObjects(Session& session, const SignParamRecord& param, ByteView bytes) {
  requireOwn(session, param.mycert);
  const FoundObjects found = wantedObjects(objectsInBundle(bytes), param.flag);
  if ((param.flag & kImportMyCertificate) != 0) {
    for (const CertPtr& certificate : found.certificates) {
      if (!session.keys.hasKeyOf(certificate.get())) fail(kKeyDoesNotMatch);
    }
  }
  if ((param.flag & kImportUi) != 0) confirmImport(found);
  for (const CertPtr& certificate : found.certificates) session.addCertificate(certificate.get());
  for (const CrlPtr& crl : found.crls) {
    try {
      session.store.add(crl.get());
    } catch (const EngineError& error) {
      // An update brings the store up to date; what is older is no news.
      if (error.code != kCrlOlder || (param.flag & kImportUpdate) == 0) throw;
    }
  }
}

}  // namespace standin
