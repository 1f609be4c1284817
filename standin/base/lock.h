// A lock for std::lock_guard: the compiler's win32 thread model has no mutex.
#pragma once

#include <windows.h>

#include <mutex>

namespace standin {

/// Re-entrant: a window of the engine runs the message loop, which may call the engine again.
class Lock {
 public:
  Lock() { InitializeCriticalSection(&section_); }
  ~Lock() { DeleteCriticalSection(&section_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  void lock() { EnterCriticalSection(&section_); }
  void unlock() { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_;
};

}  // namespace standin
