#include "trap.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstring>

namespace check {
namespace {

// What GCC's jumps across functions need. They unwind nothing, which a thread that has just faulted could not do.
thread_local void* landing[5];
thread_local bool isArmed = false;
thread_local char fault[100];

/// Keeps the state of the surrounding call.
class Outer {
 public:
  Outer() : isArmed_(isArmed) { std::memcpy(landing_, landing, sizeof landing); }
  Outer(const Outer&) = delete;
  Outer& operator=(const Outer&) = delete;
  ~Outer() {
    std::memcpy(landing, landing_, sizeof landing);
    isArmed = isArmed_;
  }

 private:
  void* landing_[5];
  bool isArmed_;
};

[[noreturn]] void Land() { __builtin_longjmp(landing, 1); }

bool IsFault(DWORD code) {
  switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_PRIV_INSTRUCTION:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_STACK_OVERFLOW:
      return true;
    default:
      return code == 0xC0000374;  // heap corruption
  }
}

LONG CALLBACK OnException(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  if (!isArmed || !IsFault(record.ExceptionCode)) return EXCEPTION_CONTINUE_SEARCH;
  isArmed = false;
  const bool hasAddress = record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters > 1;
  std::snprintf(fault, sizeof fault, "fault %08lX", record.ExceptionCode);
  if (hasAddress) {
    std::snprintf(fault, sizeof fault, "fault: %s address %llX",
                  record.ExceptionInformation[0] == 1 ? "writes" : "reads",
                  static_cast<unsigned long long>(record.ExceptionInformation[1]));
  }
  // The thread goes on in Land, on a stack that is aligned as after a call.
  CONTEXT& context = *exception->ContextRecord;
  context.Rip = reinterpret_cast<DWORD64>(&Land);
  context.Rsp = ((context.Rsp - 256) & ~static_cast<DWORD64>(15)) - 8;
  return EXCEPTION_CONTINUE_EXECUTION;
}

std::atomic<ULONGLONG> watchedSince = 0;
ULONGLONG watchLimit = 0;
void (*watchReport)() = nullptr;

DWORD WINAPI Watch(void*) {
  for (;;) {
    Sleep(200);
    const ULONGLONG since = watchedSince;
    if (since == 0 || GetTickCount64() < since + watchLimit) continue;
    watchReport();
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 1);
  }
}

}  // namespace

// Not inlined: its frame is where the jump lands.
__attribute__((noinline)) std::string FaultIn(const std::function<void()>& work) {
  static const PVOID kHandler = AddVectoredExceptionHandler(1, OnException);
  if (kHandler == nullptr) return "faults cannot be caught";
  const Outer outer;
  if (__builtin_setjmp(landing) != 0) return fault;
  isArmed = true;
  work();
  return "";
}

void StartWatch(unsigned seconds, void (*report)()) {
  watchLimit = seconds * 1000ULL;
  watchReport = report;
  CloseHandle(CreateThread(nullptr, 0, Watch, nullptr, 0, nullptr));
}

void WatchBegins() { watchedSince = GetTickCount64(); }
void WatchEnds() { watchedSince = 0; }

}  // namespace check
