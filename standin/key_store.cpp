// The own keys of a session.
#include "standin/key_store.h"

#include <windows.h>

#include <algorithm>

#include "standin/ansi.h"
#include "standin/cert_id.h"
#include "standin/codes.h"
#include "standin/pkcs12_file.h"
#include "standin/times.h"
#include "standin/win_file.h"

namespace standin {
namespace {

constexpr uint64_t kLargestKeyFile = 4 * 1024 * 1024;

Bytes readKeyFile(const std::string& path) {
  try {
    return readWholeFile(path.c_str(), kLargestKeyFile);
  } catch (const EngineError& error) {
    const bool missing = error.code == ERROR_FILE_NOT_FOUND || error.code == ERROR_PATH_NOT_FOUND;
    fail(missing ? kKeyFileMissing : error.code == kTooLarge ? kKeyFileDamaged : error.code);
  }
}

bool suits(X509* certificate, KeyPurpose purpose) {
  if (purpose == KeyPurpose::kAny) return true;
  const uint32_t wanted = purpose == KeyPurpose::kSigning ? KU_DIGITAL_SIGNATURE | KU_NON_REPUDIATION
                                                          : KU_KEY_ENCIPHERMENT | KU_KEY_AGREEMENT;
  // A certificate without the extension answers with every bit set.
  return (X509_get_key_usage(certificate) & wanted) != 0;
}

}  // namespace

void KeyStore::open(const std::string& path, const std::string& pin) {
  Pkcs12Content content = readPkcs12(readKeyFile(path), utf8FromAnsi(pin));
  for (CertPtr& certificate : content.certificates) {
    EVP_PKEY* key = nullptr;
    for (const KeyPtr& candidate : content.keys) {
      if (X509_check_private_key(certificate.get(), candidate.get()) == 1) key = candidate.get();
    }
    if (key == nullptr) {
      chain_.push_back(std::move(certificate));
    } else {
      EVP_PKEY_up_ref(key);
      own_.push_back({std::move(certificate), KeyPtr(key)});
    }
  }
}

bool KeyStore::owns(const X509* certificate) const {
  return std::any_of(own_.begin(), own_.end(),
                     [&](const OwnKey& own) { return X509_cmp(own.certificate.get(), certificate) == 0; });
}

const OwnKey& KeyStore::pick(const CertIdRecord* id, KeyPurpose purpose) const {
  const OwnKey* best = nullptr;
  int best_score = -1;
  for (const OwnKey& own : own_) {
    if (namesCertificate(id)) {
      if (matches(own.certificate.get(), *id)) return own;
      continue;
    }
    const int score = (suits(own.certificate.get(), purpose) ? 2 : 0) +
                      (isWithinValidity(own.certificate.get(), currentTime()) ? 1 : 0);
    if (score > best_score) {
      best = &own;
      best_score = score;
    }
  }
  if (best == nullptr) fail(kOwnCertificateNotFound);
  return *best;
}

}  // namespace standin
