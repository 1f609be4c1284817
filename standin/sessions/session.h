// An engine session with its keys, store, memory and open streams, and the table of open sessions.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "engine/functions.h"
#include "standin/base/buffers.h"
#include "standin/base/codes.h"
#include "standin/base/lock.h"
#include "standin/sessions/key_store.h"
#include "standin/sessions/store.h"

namespace standin {

/// The base of all streams.
class Stream {
 public:
  virtual ~Stream() = default;
};

/// The places of a session's keys and store; all texts are ANSI.
struct SessionSource {
  std::string keyFile;
  std::string pin;
  std::string folder;
  uint32_t flags = 0;
};

class Session {
 public:
  /// A session without keys and store.
  Session() = default;
  explicit Session(const SessionSource& source);

  Lock lock;
  Buffers buffers;
  KeyStore keys;
  Store store;

  /// Adds to the store. A certificate of an own key becomes an own certificate.
  void addCertificate(X509* certificate);
  /// The own certificates, then the others of the store: those under the term, if there is one, and perhaps more.
  std::vector<CertPtr> knownCertificates(std::optional<Term> term = {}) const;

  EngineStream addStream(std::unique_ptr<Stream> stream);
  /// The open stream of this kind; fails with kBadStream.
  template <typename Kind>
  Kind& stream(const EngineStream* handle) {
    Kind* found = dynamic_cast<Kind*>(findStream(handle));
    if (found == nullptr) Fail(kBadStream);
    return *found;
  }
  /// Removes the stream from the session.
  template <typename Kind>
  std::unique_ptr<Kind> endStream(EngineStream* handle) {
    stream<Kind>(handle);
    return std::unique_ptr<Kind>(static_cast<Kind*>(takeStream(handle).release()));
  }

 private:
  void openKeys(const SessionSource& source);
  Stream* findStream(const EngineStream* handle);
  std::unique_ptr<Stream> takeStream(EngineStream* handle);

  std::map<EngineStream, std::unique_ptr<Stream>> streams_;
};

/// Adds a session to the table. Its handle is a number, not an address, and is never used again.
EngineSession AddSession(std::shared_ptr<Session> session);
/// Fails with kBadSession.
std::shared_ptr<Session> FindSession(EngineSession handle);
/// Removes the session from the table; fails with kBadSession.
std::shared_ptr<Session> RemoveSession(EngineSession handle);
/// Frees all sessions and the table, before the library is unloaded.
void RemoveAllSessions();

}  // namespace standin
