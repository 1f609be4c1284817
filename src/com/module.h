// What the module as a whole keeps: its instance, its lock count, its critical section, its clean-up list.
#pragma once

#include <windows.h>

namespace com::module {

/// Process attach: remembers the instance and makes the critical section.
void Attach(HINSTANCE self);
/// Process detach: runs the clean-up functions in the order of their registration and deletes the critical section.
void Detach();
bool IsAttached();
HINSTANCE Instance();

/// The lock count: live objects of any class plus server locks. Changed atomically.
void Lock();
void Unlock();
LONG LockCount();

/// Registers a function for Detach. One clean-up function per cache; the caller holds a Guard.
using CleanUp = void (*)();
void AtDetach(CleanUp cleanUp);

/// Holds the module's critical section.
class Guard {
 public:
  Guard();
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;
  ~Guard();
};

}  // namespace com::module
