// Sessions, memory and answers of the fake engine.
#include "fake_engine/state.h"

#include <windows.h>

#include <algorithm>

namespace fake {

State& Engine() {
  static State engine;
  return engine;
}

std::vector<std::string> State::outstanding() const {
  std::vector<std::string> origins;
  for (const auto& [address, block] : blocks_) origins.push_back(block.origin);
  return origins;
}

void State::releaseOutstanding() { blocks_.clear(); }

void State::reset() {
  madeCalls.clear();
  standingReplies.clear();
  queuedReplies.clear();
  improvise = nullptr;
  blocks_.clear();
  retired_.clear();
  sessions_.clear();
  violations_.clear();
  handedOut_ = givenBack_ = 0;
}

const std::string& State::known(const std::string& function) const {
  const HMODULE self = GetModuleHandleW(L"tavl1.dll");
  if (GetProcAddress(self, function.c_str()) == nullptr) throw std::invalid_argument("no engine function " + function);
  return function;
}

Reply State::enter(Call call) {
  const std::string function = call.function;
  madeCalls.push_back(std::move(call));
  Reply reply;
  auto& queue = queuedReplies[function];
  if (!queue.empty()) {
    reply = std::move(queue.front());
    queue.pop_front();
  } else if (auto found = standingReplies.find(function); found != standingReplies.end()) {
    reply = found->second;
  } else if (improvise) {
    reply = improvise(madeCalls.back());
  }
  if (reply.during) reply.during();
  function_ = function;
  return reply;
}

void State::checkSession(void* session) {
  session_ = session;
  if (session != nullptr && sessions_.count(session) == 0) violate("a session that is not open");
}

void* State::freshHandle() {
  nextHandle_ += 0x10;
  return reinterpret_cast<void*>(nextHandle_);
}

void* State::openSession(const Reply& reply) {
  void* handle = reply.handle ? *reply.handle : freshHandle();
  if (handle != nullptr) sessions_.insert(handle);
  return handle;
}

void State::closeSession(void* session) { sessions_.erase(session); }

void* State::handOut(size_t size) {
  Block block{function_, session_, std::vector<uint8_t>(std::max<size_t>(size, 1))};
  const auto address = reinterpret_cast<uintptr_t>(block.memory.data());
  blocks_.emplace(address, std::move(block));
  ++handedOut_;
  return reinterpret_cast<void*>(address);
}

void State::takeBack(uintptr_t address) {
  auto found = blocks_.find(address);
  if (found == blocks_.end()) {
    violate("a block that is not handed out");
    return;
  }
  if (found->second.session != session_) violate("a block of another session");
  std::fill(found->second.memory.begin(), found->second.memory.end(), 0xDD);
  retired_.push_back(std::move(found->second));
  blocks_.erase(found);
  ++givenBack_;
}

void State::takeBackAll(const Snapshot& record) {
  std::vector<uintptr_t> pointers;
  CollectPointers(record, pointers);
  for (uintptr_t pointer : pointers) takeBack(pointer);
}

}  // namespace fake

extern "C" fake::FakeEngine* TavlFakeEngine() { return &fake::Engine(); }
