#include "attack/load/apartments.h"

#include <objbase.h>

namespace {

struct Start {
  size_t index;
  bool isSingle;
  HANDLE allAreReady;
  const std::function<void(size_t)>* body;
};

DWORD WINAPI Run(void* argument) {
  const auto& start = *static_cast<Start*>(argument);
  CoInitializeEx(nullptr, start.isSingle ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED);
  WaitForSingleObject(start.allAreReady, INFINITE);
  (*start.body)(start.index);
  CoUninitialize();
  return 0;
}

}  // namespace

void RunOnThreads(size_t count, const std::function<bool(size_t)>& isSingle, const std::function<void(size_t)>& body) {
  const HANDLE allAreReady = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::vector<Start> starts;
  for (size_t i = 0; i < count; ++i) starts.push_back({i, isSingle(i), allAreReady, &body});
  std::vector<HANDLE> threads;
  for (Start& start : starts) threads.push_back(CreateThread(nullptr, 0, Run, &start, 0, nullptr));
  SetEvent(allAreReady);
  for (HANDLE thread : threads) {
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
  }
  CloseHandle(allAreReady);
}

void PumpMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}
