// The cases of an attack: each has a text, by which it can be run alone, a watchdog, and a line when it fails.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "caller.h"

class Cases {
 public:
  /// `only` is the text of the one case to run; empty for all.
  Cases(std::string attack, unsigned seed, std::string only);
  ~Cases();
  Cases(const Cases&) = delete;
  Cases& operator=(const Cases&) = delete;

  /// Begins a case; false if it is not wanted.
  bool begin(const std::string& what);
  /// Runs a call of the case. A call that waits for ten seconds hangs, and ends the process; one that works for more
  /// than two fails.
  Outcome call(const std::function<Outcome()>& call);
  /// Counts in a case that is wanted.
  void check(bool holds, const std::string& otherwise);
  /// Prints the sum; the exit code of the program.
  int finish() const;

 private:
  static DWORD WINAPI watch(void* self);

  std::string attack_;
  unsigned seed_;
  std::string only_;
  std::string what_;
  bool wanted_ = false;
  unsigned run_ = 0;
  unsigned failed_ = 0;
  std::atomic<ULONGLONG> began_{0};
};

std::string Narrow(const std::wstring& text);
/// A code as it stands in tables.
std::string CodeText(HRESULT code);
/// What is different between two listings of a folder; empty if nothing is.
std::string Difference(const std::map<std::wstring, Bytes>& before, const std::map<std::wstring, Bytes>& after);
/// Whether a file has the form of the names that the engine uses while it writes.
bool IsTemporary(const std::wstring& name);
