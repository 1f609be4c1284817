#include "attack/shared/guard.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>

namespace {

constexpr DWORD kFault = 3;
constexpr DWORD kTooLong = 4;

/// What one thread does. The places outlive their threads: the watchdog reads them.
struct Place {
  std::atomic<ULONGLONG> since = 0;
  std::array<char, 400> description{};
};

std::array<Place, 64> places;
std::atomic<size_t> placeCount = 0;
thread_local Place* ownPlace = nullptr;
DWORD limit = 0;

Place& OwnPlace() {
  if (ownPlace == nullptr) ownPlace = &places[placeCount++ % places.size()];
  return *ownPlace;
}

[[noreturn]] void End(const char* reason, const Place& place, DWORD code) {
  std::printf("%s\n  in %s\n", reason, place.description.data());
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), code);
  std::abort();
}

bool IsFault(DWORD code) {
  switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_STACK_OVERFLOW:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_PRIV_INSTRUCTION:
    case EXCEPTION_ARRAY_BOUNDS_EXCEEDED:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_BREAKPOINT:
      return true;
    default:
      return code == 0xC0000374 || code == 0xC0000409;  // heap corruption, stack buffer overrun
  }
}

LONG CALLBACK OnException(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  if (!IsFault(record.ExceptionCode)) return EXCEPTION_CONTINUE_SEARCH;
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     static_cast<LPCSTR>(record.ExceptionAddress), &module);
  char path[MAX_PATH] = "no module";
  if (module != nullptr) GetModuleFileNameA(module, path, sizeof path);
  char reason[MAX_PATH + 100];
  std::snprintf(
      reason, sizeof reason, "fault %08lX at +%llX of %s, address %llX", record.ExceptionCode,
      static_cast<unsigned long long>(static_cast<char*>(record.ExceptionAddress) - reinterpret_cast<char*>(module)),
      path, static_cast<unsigned long long>(record.ExceptionInformation[1]));
  End(reason, OwnPlace(), kFault);
}

DWORD WINAPI Watch(void*) {
  for (;;) {
    Sleep(100);
    for (Place& place : places) {
      const ULONGLONG since = place.since;
      if (since != 0 && GetTickCount64() > since + limit) End("a call takes too long", place, kTooLong);
    }
  }
}

}  // namespace

void StartGuard(DWORD limitInMilliseconds) {
  limit = limitInMilliseconds;
  AddVectoredExceptionHandler(1, OnException);
  CloseHandle(CreateThread(nullptr, 0, Watch, nullptr, 0, nullptr));
}

void GuardCase(const std::string& description) {
  Place& place = OwnPlace();
  std::snprintf(place.description.data(), place.description.size(), "%s", description.c_str());
  place.since = GetTickCount64();
}

void GuardIdle() { OwnPlace().since = 0; }
