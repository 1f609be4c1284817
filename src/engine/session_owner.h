// The engine session of one object, and its use by the object's operations.
#pragma once

#include <utility>

#include "engine/functions.h"

namespace engine {

class SessionUse;

/// Holds at most one open session. All calls arrive on one thread and nest: while an operation shows a window, or
/// while the engine calls out, another call may close the session or open one.
class SessionOwner {
 public:
  SessionOwner() = default;
  SessionOwner(const SessionOwner&) = delete;
  SessionOwner& operator=(const SessionOwner&) = delete;

  bool isOpen() const { return handle_ != nullptr; }

  /// Opens a session: `call` receives the address for the handle and returns the engine's code, which is returned.
  /// The handle is kept as the engine leaves it, also after a failure. If a nested call has opened a session
  /// meanwhile, that one stays, the new one is closed, and `alreadyOpen` is returned.
  template <class OpenCall>
  int32_t open(OpenCall call, int32_t alreadyOpen) {
    EngineSession opened = nullptr;
    int32_t code = call(&opened);
    if (!handle_) {
      handle_ = opened;
      return code;
    }
    if (opened) QUIVO_Uninitialize(opened);
    return alreadyOpen;
  }

  /// Forgets the session and closes it, and returns the engine's code. If operations still use the session, it is
  /// closed when the last of them ends, and 0 is returned. The session must be open.
  int32_t close();

 private:
  friend class SessionUse;

  EngineSession handle_ = nullptr;
  SessionUse* innermost_ = nullptr;
};

/// Keeps the session of an object open for one operation, from its first engine call to the last buffer that it gives
/// back. Lives on the operation's stack.
class SessionUse {
 public:
  explicit SessionUse(SessionOwner& owner) : owner_(owner), handle_(owner.handle_), outer_(owner.innermost_) {
    owner.innermost_ = this;
  }
  SessionUse(const SessionUse&) = delete;
  SessionUse& operator=(const SessionUse&) = delete;
  ~SessionUse() {
    owner_.innermost_ = outer_;
    if (closesAtEnd_) QUIVO_Uninitialize(handle_);
  }

  /// The session of the operation; null if none was open when the operation began: the engine then refuses its calls.
  operator EngineSession() const { return handle_; }
  /// False once a nested call has closed the session or replaced it.
  bool isCurrent() const { return owner_.handle_ == handle_; }

 private:
  friend class SessionOwner;

  SessionOwner& owner_;
  const EngineSession handle_;
  SessionUse* const outer_;
  bool closesAtEnd_ = false;
};

}  // namespace engine
