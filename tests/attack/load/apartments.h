// Threads, each in an apartment, and what they run.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <vector>

/// Runs `body` on `count` threads at once and waits for all; each gets its index. Those that `isSingle` selects are in
/// an apartment of their own, the others in the multithreaded one.
void RunOnThreads(size_t count, const std::function<bool(size_t)>& isSingle, const std::function<void(size_t)>& body);

/// Handles the messages that wait for this thread.
void PumpMessages();
