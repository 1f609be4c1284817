// When a session updates its revocation lists and checks its keys: two periods, kept in the registry.
#pragma once

#include <windows.h>

#include <cstdint>

namespace legacy {

/// Times in seconds since 1970-01-01 UTC, periods in minutes.
struct Periods {
  DWORD lastCrlUpdate = 0;
  DWORD crlUpdatePeriod = 2880;
  DWORD lastKeyCheck = 0;
  DWORD keyCheckPeriod = 2880;
};

/// The values below an open key; each that is missing or malformed keeps its default.
Periods ReadPeriods(HKEY key);

/// The flags (Init_Flag_t) to open a session with at the time `now`. All arithmetic is unsigned and wraps.
uint32_t InitFlags(const Periods& periods, uint32_t now);

/// Remembers what a session that was opened with `flags` has done. The result of writing is ignored.
void RememberChecks(HKEY key, uint32_t flags, uint32_t now);

/// The present, as the low 32 bits of the runtime's clock.
uint32_t SecondsNow();

}  // namespace legacy
