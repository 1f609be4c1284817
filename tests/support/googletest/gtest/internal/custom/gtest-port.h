// Customisation point of googletest: the win32 thread model of the compiler has no std::condition_variable, so the
// one class that needs it stands here, on an event of Windows.
#pragma once

#include <windows.h>

#define GTEST_HAS_NOTIFICATION_ 1

namespace testing::internal {

class Notification {
 public:
  Notification() : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
  Notification(const Notification&) = delete;
  Notification& operator=(const Notification&) = delete;
  ~Notification() { CloseHandle(event_); }

  void Notify() { SetEvent(event_); }
  void WaitForNotification() { WaitForSingleObject(event_, INFINITE); }

 private:
  HANDLE event_;
};

}  // namespace testing::internal
