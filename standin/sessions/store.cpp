#include "standin/sessions/store.h"

#include <windows.h>

#include <set>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/digest.h"
#include "standin/base/files.h"
#include "standin/base/times.h"
#include "standin/certificates/crl_scope.h"

namespace standin {
namespace {

/// Nothing for an unreadable file: the folder is shared, and somebody may be deleting the file or keep it for himself.
Bytes BytesInFile(const std::string& path) {
  try {
    constexpr bool kMayBeWritten = true;
    return ReadWholeFile(path.c_str(), kLargestObject, kMayBeWritten);
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

/// Adds the object to a catalog that other sessions may share.
template <typename Object>
void Add(std::shared_ptr<Catalog<Object>>& catalog, typename Catalog<Object>::Ptr object) {
  if (catalog->knows(*object)) return;
  if (catalog.use_count() > 1) catalog = std::make_shared<Catalog<Object>>(*catalog);
  catalog->add(std::move(object));
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
  content_ = ContentOfFolder(folder);
  // The search for a file that is missing takes the platform longer, the more files there are.
  const Bytes policy = content_.hasPolicy ? BytesInFile(JoinPath(folder, kPolicyFile)) : Bytes();
  policy_.assign(1, '\n').append(policy.begin(), policy.end());
}

void Store::addTrusted(const std::vector<CertPtr>& certificates) {
  for (const CertPtr& certificate : certificates) {
    Add(content_.certificates, StoredCertificate::fromObject(Share(certificate.get())));
  }
}

Store::CrlReload Store::reloadCrls() {
  if (!isOpen()) Fail(kNoStore);
  const std::shared_ptr<CrlCatalog> before = std::exchange(content_.crls, ContentOfFolder(folder_).crls);
  CrlReload result;
  for (const auto& crl : crls().all()) {
    if (crl->get() == nullptr) continue;
    ++result.lists;
    if (!before->knows(*crl)) ++result.added;
    if (IsOutdated(crl->get())) ++result.outdated;
  }
  return result;
}

void Store::add(X509* certificate) {
  if (!isOpen()) Fail(kNoStore);
  auto stored = StoredCertificate::fromObject(Share(certificate));
  if (!certificates().knows(*stored)) {
    WriteObject(JoinPath(folder_, ThumbprintText(stored->der()) + ".cer"), stored->der());
  }
  Add(content_.certificates, std::move(stored));
}

void Store::add(X509_CRL* crl) {
  if (!isOpen()) Fail(kNoStore);
  if (isForged(crl)) Fail(kCrlForged);
  const X509_CRL* known = newestLike(crl);
  if (known != nullptr && X509_CRL_match(known, crl) == 0) return;
  if (known != nullptr && IssuedAt(crl) < IssuedAt(known)) Fail(kCrlOlder);
  auto stored = StoredCrl::fromObject(Share(crl));
  WriteObject(JoinPath(folder_, ThumbprintText(stored->der()) + ".crl"), stored->der());
  Add(content_.crls, std::move(stored));
}

CertPtr Store::decoded(ByteView certificate) const {
  for (const size_t place : certificates().find(HashTerm(HashOf(certificate, EVP_sha256())))) {
    const StoredCertificate& known = *certificates().all()[place];
    if (known.get() != nullptr && Equal(known.der(), certificate)) return Share(known.get());
  }
  return CertificateFromDer(certificate);
}

std::vector<X509_CRL*> Store::crlsOf(const std::vector<const X509_NAME*>& issuers) const {
  std::set<size_t> places;
  for (const X509_NAME* issuer : issuers) {
    for (const size_t place : crls().find(NameTerm(issuer))) places.insert(place);
  }
  std::vector<X509_CRL*> found;
  for (const size_t place : places) {
    X509_CRL* crl = crls().all()[place]->get();
    if (crl != nullptr) found.push_back(crl);
  }
  return found;
}

X509_CRL* Store::newestLike(const X509_CRL* wanted) const {
  X509_CRL* newest = nullptr;
  for (X509_CRL* crl : crlsOf({X509_CRL_get_issuer(wanted)})) {
    if (!AreOfOneKind(crl, wanted)) continue;
    if (newest == nullptr || IssuedAt(crl) > IssuedAt(newest)) newest = crl;
  }
  return newest;
}

bool Store::isForged(X509_CRL* crl) const {
  bool issuerKnown = false;
  const X509_NAME* issuer = X509_CRL_get_issuer(crl);
  for (const size_t place : certificates().find(NameTerm(issuer))) {
    const X509* certificate = certificates().all()[place]->get();
    if (certificate == nullptr || X509_NAME_cmp(X509_get_subject_name(certificate), issuer) != 0) continue;
    EVP_PKEY* key = X509_get0_pubkey(certificate);
    if (key != nullptr && X509_CRL_verify(crl, key) == 1) return false;
    issuerKnown = true;
  }
  return issuerKnown;
}

}  // namespace standin
