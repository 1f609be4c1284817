#include "standin/sessions/store.h"

#include <windows.h>

#include <algorithm>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/digest.h"
#include "standin/base/files.h"
#include "standin/base/times.h"
#include "standin/certificates/crl_scope.h"
#include "standin/certificates/der_objects.h"

namespace standin {
namespace {

/// Nothing for an unreadable file: the folder is shared, and somebody may be writing or deleting the file.
Bytes BytesInFile(const std::string& path) {
  try {
    return ReadWholeFile(path.c_str(), kLargestObject);
  } catch (const EngineError&) {
    return {};
  }
}

/// Writes the file of an object, unless another process has written it: its readers keep it from being replaced.
void WriteObject(const std::string& path, ByteView der) {
  try {
    WriteWholeFile(path.c_str(), der);
  } catch (const EngineError&) {
    if (!Equal(BytesInFile(path), der)) throw;
  }
}

time_t IssuedAt(const X509_CRL* crl) { return SecondsOf(X509_CRL_get0_lastUpdate(crl)); }

bool Contains(const std::vector<CrlPtr>& crls, const X509_CRL* wanted) {
  return std::ranges::any_of(crls, [&](const CrlPtr& crl) { return X509_CRL_match(crl.get(), wanted) == 0; });
}

bool IsOutdated(const X509_CRL* crl) {
  const ASN1_TIME* next = X509_CRL_get0_nextUpdate(crl);
  return next != nullptr && SecondsOf(next) < CurrentTime();
}

}  // namespace

std::string ThumbprintText(ByteView der) { return HexOf(HashOf(der, EVP_sha1())); }

void Store::open(const std::string& folder) {
  const DWORD attributes = GetFileAttributesA(folder.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) Fail(kStoreUnreadable);
  folder_ = folder;
  readFolder(true);
  const Bytes policy = BytesInFile(JoinPath(folder, "policy.txt"));
  policy_.assign(1, '\n').append(policy.begin(), policy.end());
}

void Store::readFolder(bool certificatesToo) {
  for (const std::string& name : FilesIn(folder_, "*")) {
    FoundObjects found = ObjectsIn(BytesInFile(JoinPath(folder_, name)));
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
    if (!Contains(before, crl.get())) ++result.added;
    if (IsOutdated(crl.get())) ++result.outdated;
  }
  return result;
}

void Store::add(X509* certificate) {
  if (!isOpen()) Fail(kNoStore);
  const Bytes der = DerOf(certificate);
  if (!knows(certificate)) WriteObject(JoinPath(folder_, ThumbprintText(der) + ".cer"), der);
  remember(Share(certificate));
}

void Store::add(X509_CRL* crl) {
  if (!isOpen()) Fail(kNoStore);
  if (isForged(crl)) Fail(kCrlForged);
  const X509_CRL* known = newestLike(crl);
  if (known != nullptr && X509_CRL_match(known, crl) == 0) return;
  if (known != nullptr && IssuedAt(crl) < IssuedAt(known)) Fail(kCrlOlder);
  const Bytes der = DerOf(crl);
  WriteObject(JoinPath(folder_, ThumbprintText(der) + ".crl"), der);
  X509_CRL_up_ref(crl);
  remember(CrlPtr(crl));
}

X509_CRL* Store::newestLike(const X509_CRL* wanted) const {
  X509_CRL* newest = nullptr;
  for (const CrlPtr& crl : crls_) {
    if (!AreOfOneKind(crl.get(), wanted)) continue;
    if (newest == nullptr || IssuedAt(crl.get()) > IssuedAt(newest)) newest = crl.get();
  }
  return newest;
}

bool Store::isForged(X509_CRL* crl) const {
  bool issuerKnown = false;
  for (const CertPtr& certificate : certificates_) {
    if (X509_NAME_cmp(X509_get_subject_name(certificate.get()), X509_CRL_get_issuer(crl)) != 0) continue;
    EVP_PKEY* key = X509_get0_pubkey(certificate.get());
    if (key != nullptr && X509_CRL_verify(crl, key) == 1) return false;
    issuerKnown = true;
  }
  return issuerKnown;
}

bool Store::knows(const X509* certificate) const {
  return std::ranges::any_of(certificates_,
                             [&](const CertPtr& known) { return X509_cmp(known.get(), certificate) == 0; });
}

void Store::remember(CertPtr certificate) {
  if (!knows(certificate.get())) certificates_.push_back(std::move(certificate));
}

void Store::remember(CrlPtr crl) {
  if (!Contains(crls_, crl.get())) crls_.push_back(std::move(crl));
}

}  // namespace standin
