// The ways in which a program under test can go wrong without a word of its own.
#pragma once

#include <windows.h>

#include <string>

/// Goes wrong in the way that `how` names; returns for any other word.
inline void Misbehave(const std::string& how) {
  if (how == "crash") {
    int* volatile nowhere = nullptr;
    *nowhere = 0;
  }
  if (how == "exit") ExitProcess(0);
  if (how == "hang") Sleep(INFINITE);
}

/// The way that the runner's test asks for.
inline std::string RequestedMisbehaviour() {
  char how[32] = "";
  GetEnvironmentVariableA("TAVL_MISBEHAVIOUR", how, sizeof how);
  return how;
}
