#include "standin/sessions/key_store.h"

#include <windows.h>

#include <algorithm>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/files.h"
#include "standin/base/times.h"
#include "standin/certificates/cert_id.h"
#include "standin/sessions/sealed_keys.h"

namespace standin {
namespace {

constexpr uint64_t kLargestKeyFile = 4 * 1024 * 1024;

Bytes ReadKeyFile(const std::string& path) {
  try {
    return ReadWholeFile(path.c_str(), kLargestKeyFile);
  } catch (const EngineError& error) {
    const bool missing = error.code == ERROR_FILE_NOT_FOUND || error.code == ERROR_PATH_NOT_FOUND;
    Fail(missing ? kKeyFileMissing : error.code == kTooLarge ? kKeyFileDamaged : error.code);
  }
}

bool Suits(X509* certificate, KeyPurpose purpose) {
  if (purpose == KeyPurpose::kAny) return true;
  const uint32_t wanted = purpose == KeyPurpose::kSigning ? KU_DIGITAL_SIGNATURE | KU_NON_REPUDIATION
                                                          : KU_KEY_ENCIPHERMENT | KU_KEY_AGREEMENT;
  // Without the extension, every bit is set.
  return (X509_get_key_usage(certificate) & wanted) != 0;
}

}  // namespace

KeyStore::~KeyStore() { OPENSSL_cleanse(pin_.data(), pin_.size()); }

void KeyStore::setPin(const std::string& pin) { pin_ = Utf8FromAnsi(pin); }

void KeyStore::open(const std::string& path) {
  KeyFileContent content = ReadKeys(ReadKeyFile(path), pin_);
  for (KeyPtr& key : content.keys) keys_.push_back(std::move(key));
  for (CertPtr& certificate : content.certificates) {
    if (hasKeyOf(certificate.get())) {
      adopt(certificate.get());
    } else {
      chain_.push_back(std::move(certificate));
    }
  }
}

void KeyStore::openFiles(const std::string& folder, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    try {
      for (KeyPtr& key : ReadKeys(ReadKeyFile(JoinPath(folder, name)), pin_).keys) keys_.push_back(std::move(key));
    } catch (const EngineError&) {
      // The folder is shared: the file may belong to somebody else.
    }
  }
}

void KeyStore::keep(EVP_PKEY* key, const std::string& folder, const std::string& name) {
  WriteWholeFile(JoinPath(folder, name + ".key").c_str(), SealKey(key, pin_));
  EVP_PKEY_up_ref(key);
  keys_.emplace_back(key);
}

EVP_PKEY* KeyStore::keyOf(X509* certificate) const {
  for (const KeyPtr& key : keys_) {
    if (X509_check_private_key(certificate, key.get()) == 1) return key.get();
  }
  return nullptr;
}

void KeyStore::adopt(X509* certificate) {
  EVP_PKEY* key = keyOf(certificate);
  if (key == nullptr || owns(certificate)) return;
  EVP_PKEY_up_ref(key);
  own_.push_back({Share(certificate), KeyPtr(key)});
}

bool KeyStore::owns(const X509* certificate) const {
  return std::any_of(own_.begin(), own_.end(),
                     [&](const OwnKey& own) { return X509_cmp(own.certificate.get(), certificate) == 0; });
}

const OwnKey& KeyStore::pick(const CertIdRecord* id, KeyPurpose purpose) const {
  const OwnKey* best = nullptr;
  int bestScore = -1;
  for (const OwnKey& own : own_) {
    if (id != nullptr && NamesCertificate(id)) {
      if (Matches(own.certificate.get(), *id)) return own;
      continue;
    }
    const int score = (Suits(own.certificate.get(), purpose) ? 2 : 0) +
                      (IsWithinValidity(own.certificate.get(), CurrentTime()) ? 1 : 0);
    if (score > bestScore) {
      best = &own;
      bestScore = score;
    }
  }
  if (best == nullptr) Fail(kOwnCertificateNotFound);
  return *best;
}

}  // namespace standin
