// One engine session: its keys, its store, the memory it handed out and its open streams; and the table of live
// sessions.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "engine/functions.h"
#include "standin/base/buffers.h"
#include "standin/base/lock.h"
#include "standin/sessions/key_store.h"
#include "standin/sessions/store.h"

namespace standin {

/// What a stream of any kind has in common: it can be given up at any time.
class Stream {
 public:
  virtual ~Stream() = default;
};

/// Where a session finds its keys and its store; all texts are ANSI.
struct SessionSource {
  std::string keyFile;
  std::string pin;
  std::string folder;
  uint32_t flags = 0;
};

class Session {
 public:
  /// Without a source: nothing but what needs neither keys nor a store.
  Session() = default;
  explicit Session(const SessionSource& source);

  Lock lock;
  Buffers buffers;
  KeyStore keys;
  Store store;

  /// Adds to the store; a certificate for an own key becomes an own certificate.
  void addCertificate(X509* certificate);
  /// Own certificates first, then those of the store that are not own.
  std::vector<CertPtr> knownCertificates() const;

  EngineStream addStream(std::unique_ptr<Stream> stream);
  /// The open stream of this kind behind `handle`; fails with kBadStream.
  template <typename Kind>
  Kind& stream(const EngineStream* handle) {
    Kind* found = dynamic_cast<Kind*>(findStream(handle));
    if (found == nullptr) failStream();
    return *found;
  }
  /// Takes the stream out of the session: it ends with the returned owner.
  template <typename Kind>
  std::unique_ptr<Kind> endStream(EngineStream* handle) {
    stream<Kind>(handle);
    return std::unique_ptr<Kind>(static_cast<Kind*>(takeStream(handle).release()));
  }

 private:
  void openKeys(const SessionSource& source);
  [[noreturn]] static void failStream();
  Stream* findStream(const EngineStream* handle);
  std::unique_ptr<Stream> takeStream(EngineStream* handle);

  std::map<EngineStream, std::unique_ptr<Stream>> streams_;
};

/// Enters a session in the table; the handle is a number that is never used again, not an address.
EngineSession AddSession(std::shared_ptr<Session> session);
/// The live session behind `handle`; fails with kBadSession.
std::shared_ptr<Session> FindSession(EngineSession handle);
/// Takes the session out of the table; fails with kBadSession.
std::shared_ptr<Session> RemoveSession(EngineSession handle);
/// Forgets every session and the table itself: the last call before the library is unloaded.
void RemoveAllSessions();

}  // namespace standin
