// Builds the entry of one engine call: each argument as it came, with a copy of what it points to.
#pragma once

#include "fake_engine/state.h"

namespace fake {

class Recorder {
 public:
  /// A function that takes no session.
  explicit Recorder(const char* function) {
    call_.function = function;
    Engine().begin(function);
  }
  Recorder(const char* function, void* session) : Recorder(function) {
    session_ = session;
    add(reinterpret_cast<uintptr_t>(session));
  }

  Recorder& number(int64_t value) { return add(static_cast<uint64_t>(value)); }
  Recorder& text(const char* text) { return add(text, text == nullptr ? Snapshot{} : CopyText(text)); }
  Recorder& bytes(const void* address, size_t size) { return add(address, CopyBytes(address, size)); }
  Recorder& record(const void* address, const Shape& shape) {
    return add(address, address == nullptr ? Snapshot{} : CopyRecord(address, shape));
  }
  Recorder& blob(const void* address) { return record(address, kBlob); }

  /// Ends the list of arguments; gives the answer.
  Reply reply() {
    Reply answer = Engine().enter(std::move(call_));
    Engine().checkSession(session_);
    return answer;
  }

 private:
  Recorder& add(uint64_t value) {
    call_.arguments.push_back({value, {}});
    return *this;
  }
  Recorder& add(const void* address, Snapshot target) {
    call_.arguments.push_back({reinterpret_cast<uintptr_t>(address), std::move(target)});
    return *this;
  }

  Call call_;
  void* session_ = nullptr;
};

/// One of the engine's release functions: takes back everything that the record points to.
inline int32_t TakeBack(const char* function, void* session, const void* record, const Shape& shape) {
  const Reply reply = Recorder(function, session).record(record, shape).reply();
  if (record != nullptr) Engine().takeBackAll(CopyRecord(record, shape));
  return reply.result;
}

}  // namespace fake
