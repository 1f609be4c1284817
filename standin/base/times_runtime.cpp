// The runtime's function for the time, which libcrypto calls several times per signature, in a form of our own: Wine's
// looks at the time zone too, whose files it reads under a lock for which the other threads wait.
// Without the runtime's header, which declares the function as one of another library.
#include <windows.h>

#include <cstdint>

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the runtime's names
extern "C" {

int64_t _time64(int64_t* out) {
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  constexpr int64_t kTicksPerSecond = 10'000'000;
  constexpr int64_t kFrom1601To1970 = 11'644'473'600;
  const int64_t ticks = static_cast<int64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
  const int64_t seconds = ticks / kTicksPerSecond - kFrom1601To1970;
  if (out != nullptr) *out = seconds;
  return seconds;
}

/// What code that was compiled for the runtime as a library of its own calls.
int64_t (*__imp__time64)(int64_t*) = _time64;

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
