// Processes of this program that the attacks start, stop and end.
#pragma once

#include "caller.h"

class Child {
 public:
  Child(const Folders& folders, const std::wstring& work);
  Child(Child&& other) noexcept : process_(std::exchange(other.process_, nullptr)), atWork_(other.atWork_) {}
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child();

  /// Waits until the process is at work; false if it ended before.
  bool waitForWork() const;
  void kill() const;
  /// The exit code; STILL_ACTIVE if it did not end in time.
  DWORD wait(DWORD milliseconds) const;

 private:
  HANDLE process_ = nullptr;
  HANDLE atWork_ = nullptr;
};

/// The name of the event by which a process states that it is at work.
std::wstring WorkEvent(DWORD process);
/// The event for which the processes of a crowd wait.
constexpr wchar_t kGo[] = L"tavlcom-attack-go";
