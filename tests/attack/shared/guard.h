// Watches what an attack does: a fault or a call without end ends the process with the case that repeats it.
#pragma once

#include <windows.h>

#include <string>

/// Reports faults of the process, and calls that take too long, until the process ends.
void StartGuard(DWORD limitInMilliseconds);

/// What the thread does from now on, for the report; the time is counted from here.
void GuardCase(const std::string& description);
/// The thread does nothing that has to end.
void GuardIdle();
