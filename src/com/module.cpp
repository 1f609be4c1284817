#include "com/module.h"

#include <atomic>

namespace com::module {
namespace {

// One entry per cached factory set and per interface with type information.
constexpr int kCleanUps = 64;

HINSTANCE instance;
CRITICAL_SECTION section;
std::atomic<LONG> lockCount;
CleanUp cleanUps[kCleanUps];
int cleanUpCount;

}  // namespace

void Attach(HINSTANCE self) {
  InitializeCriticalSection(&section);
  instance = self;
}

void Detach() {
  for (int i = 0; i < cleanUpCount; ++i) cleanUps[i]();
  cleanUpCount = 0;
  instance = nullptr;
  DeleteCriticalSection(&section);
}

bool IsAttached() { return instance != nullptr; }
HINSTANCE Instance() { return instance; }

void Lock() { ++lockCount; }
void Unlock() { --lockCount; }
LONG LockCount() { return lockCount; }

void AtDetach(CleanUp cleanUp) {
  if (cleanUpCount < kCleanUps) cleanUps[cleanUpCount++] = cleanUp;
}

Guard::Guard() { EnterCriticalSection(&section); }
Guard::~Guard() { LeaveCriticalSection(&section); }

}  // namespace com::module
