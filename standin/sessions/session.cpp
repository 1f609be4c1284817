#include "standin/sessions/session.h"

#include <set>

#include "standin/base/times.h"

namespace standin {
namespace {

/// Sessions and streams share one counter, so that a handle of one is never a handle of the other.
void* NextHandle() {
  static volatile LONG64 last = 0x1000;
  return reinterpret_cast<void*>(static_cast<uintptr_t>(InterlockedAdd64(&last, 16)));
}

Bytes EncodedPublicKey(const EVP_PKEY* key) {
  unsigned char* raw = nullptr;
  const int length = i2d_PUBKEY(key, &raw);
  const OctetsPtr owner(raw);
  return length <= 0 ? Bytes() : Bytes(raw, raw + length);
}

struct SessionTable {
  Lock lock;
  std::map<EngineSession, std::shared_ptr<Session>> sessions;
};

/// Not an object of static duration, whose destructor would touch open sessions when the process ends.
SessionTable& Table() {
  static SessionTable* const kTheTable = new SessionTable;
  return *kTheTable;
}

}  // namespace

Session::Session(const SessionSource& source) {
  if (!source.folder.empty()) store.open(source.folder);
  if ((source.flags & kInitVerifyContext) == 0) openKeys(source);
  if ((source.flags & kInitCheckexpired) == 0) return;
  for (const OwnKey& own : keys.own()) {
    if (!IsWithinValidity(own.certificate.get(), CurrentTime())) Fail(kOwnCertificateExpired);
  }
}

void Session::openKeys(const SessionSource& source) {
  keys.setPin(source.pin);
  if (!source.keyFile.empty()) keys.open(source.keyFile);
  if (store.isOpen()) keys.openFiles(store.folder(), store.keyFiles());
  std::set<size_t> places;
  for (const KeyPtr& key : keys.keys()) {
    for (const size_t place : store.certificates().find(PublicKeyTerm(EncodedPublicKey(key.get()))))
      places.insert(place);
  }
  for (const size_t place : places) {
    X509* certificate = store.certificates().all()[place]->get();
    if (certificate != nullptr) keys.adopt(certificate);
  }
  store.addTrusted(keys.chainCertificates());
}

void Session::addCertificate(X509* certificate) {
  store.add(certificate);
  keys.adopt(certificate);
}

std::vector<CertPtr> Session::knownCertificates(std::optional<Term> term) const {
  std::vector<CertPtr> known;
  for (const OwnKey& own : keys.own()) known.push_back(Share(own.certificate.get()));
  const auto addOther = [&](const StoredCertificate& stored) {
    X509* certificate = stored.get();
    if (certificate != nullptr && !keys.owns(certificate)) known.push_back(Share(certificate));
  };
  const auto& stored = store.certificates().all();
  if (term) {
    for (const size_t place : store.certificates().find(*term)) addOther(*stored[place]);
  } else {
    for (const auto& one : stored) addOther(*one);
  }
  return known;
}

EngineStream Session::addStream(std::unique_ptr<Stream> stream) {
  const EngineStream handle = NextHandle();
  streams_.emplace(handle, std::move(stream));
  return handle;
}

Stream* Session::findStream(const EngineStream* handle) {
  if (handle == nullptr) Fail(kWinInvalidParameter);
  const auto found = streams_.find(*handle);
  return found == streams_.end() ? nullptr : found->second.get();
}

std::unique_ptr<Stream> Session::takeStream(EngineStream* handle) {
  std::unique_ptr<Stream> stream = std::move(streams_.extract(*handle).mapped());
  *handle = nullptr;
  return stream;
}

EngineSession AddSession(std::shared_ptr<Session> session) {
  const std::lock_guard scope(Table().lock);
  const EngineSession handle = NextHandle();
  Table().sessions.emplace(handle, std::move(session));
  return handle;
}

std::shared_ptr<Session> FindSession(EngineSession handle) {
  const std::lock_guard scope(Table().lock);
  const auto found = Table().sessions.find(handle);
  if (found == Table().sessions.end()) Fail(kBadSession);
  return found->second;
}

std::shared_ptr<Session> RemoveSession(EngineSession handle) {
  const std::lock_guard scope(Table().lock);
  std::shared_ptr<Session> session = FindSession(handle);
  Table().sessions.erase(handle);
  return session;
}

void RemoveAllSessions() { delete &Table(); }

}  // namespace standin
