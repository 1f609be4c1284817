// Locks over the platform's own, as the compiler's win32 thread model has none.
#pragma once

#include <windows.h>

namespace standin {

/// Re-entrant: a window that the engine shows runs the caller's message loop, which may call the engine again.
class Lock {
 public:
  Lock() { InitializeCriticalSection(&section_); }
  ~Lock() { DeleteCriticalSection(&section_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  void enter() { EnterCriticalSection(&section_); }
  void leave() { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_;
};

class LockScope {
 public:
  explicit LockScope(Lock& lock) : lock_(lock) { lock_.enter(); }
  ~LockScope() { lock_.leave(); }
  LockScope(const LockScope&) = delete;
  LockScope& operator=(const LockScope&) = delete;

 private:
  Lock& lock_;
};

}  // namespace standin
