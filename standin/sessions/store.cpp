// The folder of certificates and revocation lists.
#include "standin/sessions/store.h"

#include <windows.h>

#include <algorithm>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/files.h"
#include "standin/base/times.h"
#include "standin/certificates/der_objects.h"

namespace standin {
namespace {

/// A file that cannot be read is passed over: a store is shared, and a file may be on its way in or out.
FoundObjects ObjectsInFile(const std::string& path) {
  try {
    return ObjectsIn(ReadWholeFile(path.c_str(), kLargestObject));
  } catch (const EngineError&) {
    return {};
  }
}

time_t IssuedAt(const X509_CRL* crl) { return SecondsOf(X509_CRL_get0_lastUpdate(crl)); }

bool IsOutdated(const X509_CRL* crl) {
  const ASN1_TIME* next = X509_CRL_get0_nextUpdate(crl);
  return next != nullptr && SecondsOf(next) < CurrentTime();
}

}  // namespace

std::string ThumbprintText(ByteView der) {
  unsigned char hash[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  if (EVP_Digest(der.data(), der.size(), hash, &length, EVP_sha1(), nullptr) != 1) Fail(kInternal);
  return HexOf({hash, length});
}

void Store::open(const std::string& folder) {
  const DWORD attributes = GetFileAttributesA(folder.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) Fail(kStoreUnreadable);
  folder_ = folder;
  readFolder(true);
}

void Store::readFolder(bool certificatesToo) {
  for (const std::string& name : FilesIn(folder_, "*")) {
    FoundObjects found = ObjectsInFile(JoinPath(folder_, name));
    for (CrlPtr& crl : found.crls) remember(std::move(crl));
    if (!certificatesToo) continue;
    for (CertPtr& certificate : found.certificates) remember(std::move(certificate));
  }
}

void Store::addTrusted(const std::vector<CertPtr>& certificates) {
  for (const CertPtr& certificate : certificates) remember(Share(certificate.get()));
}

Store::CrlReload Store::reloadCrls() {
  if (!isOpen()) Fail(kNoStore);
  std::vector<CrlPtr> before = std::move(crls_);
  crls_.clear();
  try {
    readFolder(false);
  } catch (...) {
    crls_ = std::move(before);
    throw;
  }
  CrlReload result;
  result.lists = crls_.size();
  for (const CrlPtr& crl : crls_) {
    const bool isOld = std::any_of(before.begin(), before.end(),
                                   [&](const CrlPtr& known) { return X509_CRL_match(known.get(), crl.get()) == 0; });
    if (!isOld) ++result.added;
    if (IsOutdated(crl.get())) ++result.outdated;
  }
  return result;
}

void Store::add(X509* certificate) {
  if (!isOpen()) Fail(kNoStore);
  const Bytes der = DerOf(certificate);
  if (!knows(certificate)) WriteWholeFile(JoinPath(folder_, ThumbprintText(der) + ".cer").c_str(), der);
  remember(Share(certificate));
}

void Store::add(X509_CRL* crl) {
  if (!isOpen()) Fail(kNoStore);
  const X509_NAME* issuer = X509_CRL_get_issuer(crl);
  const bool issuerKnown = std::any_of(certificates_.begin(), certificates_.end(), [&](const CertPtr& certificate) {
    return X509_NAME_cmp(X509_get_subject_name(certificate.get()), issuer) == 0;
  });
  if (issuerKnown && issuerOf(crl) == nullptr) Fail(kCrlForged);
  const X509_CRL* known = crlOf(issuer);
  if (known != nullptr && X509_CRL_match(known, crl) == 0) return;
  if (known != nullptr && IssuedAt(crl) < IssuedAt(known)) Fail(kCrlOlder);
  const Bytes der = DerOf(crl);
  WriteWholeFile(JoinPath(folder_, ThumbprintText(der) + ".crl").c_str(), der);
  X509_CRL_up_ref(crl);
  remember(CrlPtr(crl));
}

X509_CRL* Store::crlOf(const X509_NAME* issuer) const {
  X509_CRL* newest = nullptr;
  for (const CrlPtr& crl : crls_) {
    if (X509_NAME_cmp(X509_CRL_get_issuer(crl.get()), issuer) != 0) continue;
    if (newest == nullptr || IssuedAt(crl.get()) > IssuedAt(newest)) newest = crl.get();
  }
  return newest;
}

X509* Store::issuerOf(X509_CRL* crl) const {
  for (const CertPtr& certificate : certificates_) {
    if (X509_NAME_cmp(X509_get_subject_name(certificate.get()), X509_CRL_get_issuer(crl)) != 0) continue;
    EVP_PKEY* key = X509_get0_pubkey(certificate.get());
    if (key != nullptr && X509_CRL_verify(crl, key) == 1) return certificate.get();
  }
  return nullptr;
}

bool Store::knows(const X509* certificate) const {
  return std::any_of(certificates_.begin(), certificates_.end(),
                     [&](const CertPtr& known) { return X509_cmp(known.get(), certificate) == 0; });
}

void Store::remember(CertPtr certificate) {
  if (!knows(certificate.get())) certificates_.push_back(std::move(certificate));
}

bool Store::remember(CrlPtr crl) {
  const bool known = std::any_of(crls_.begin(), crls_.end(),
                                 [&](const CrlPtr& other) { return X509_CRL_match(other.get(), crl.get()) == 0; });
  if (!known) crls_.push_back(std::move(crl));
  return !known;
}

}  // namespace standin
