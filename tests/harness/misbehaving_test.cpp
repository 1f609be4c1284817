// A test program that goes wrong in the way that TAVL_MISBEHAVIOUR names: the tests of the runners run it.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>

#include "harness/misbehave.h"

namespace {

DWORD WINAPI MisbehaveInThisThread(void*) {
  const std::string how = RequestedMisbehaviour();
  Misbehave(how.substr(0, how.find("-in-thread")));
  return 0;
}

void MisbehaveInThread() {
  const HANDLE thread = CreateThread(nullptr, 0, MisbehaveInThisThread, nullptr, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
}

/// True if the runner's test left a mark beside the program; the mark is gone then.
bool TakeMark() {
  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  return DeleteFileW((std::wstring(program) + L".drop").c_str()) != FALSE;
}

/// What Wine does to a process now and then: it ends without any output.
const bool kDropped = [] {
  const std::string how = RequestedMisbehaviour();
  if (how == "silence" || (how == "drop" && TakeMark())) ExitProcess(7);
  if (how == "exit-before") ExitProcess(0);
  return false;
}();

}  // namespace

TEST(Misbehaviour, TestBefore) {}

TEST(Misbehaviour, TestThatMisbehaves) {
  const std::string how = RequestedMisbehaviour();
  if (how == "fail") FAIL();
  if (how == "skip") GTEST_SKIP() << "on request: the runner has to fail";
  if (how == "_exit") _exit(0);
  if (how.find("-in-thread") != std::string::npos) MisbehaveInThread();
  Misbehave(how);
}

TEST(Misbehaviour, TestAfter) {}

/// Switched off on purpose: all-selected has to find it where no entry of CTest runs it.
TEST(Disabled, DISABLED_Test) {}
