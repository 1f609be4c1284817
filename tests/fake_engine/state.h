// The one engine behind the control object: its sessions, its memory and the list of calls.
#pragma once

#include <map>
#include <set>
#include <string>

#include "fake_engine/fake_engine.h"
#include "fake_engine/shapes.h"

namespace fake {

class State final : public FakeEngine {
 public:
  std::vector<std::string> outstanding() const override;
  size_t handedOut() const override { return handedOut_; }
  size_t givenBack() const override { return givenBack_; }
  std::vector<std::string> violations() const override { return violations_; }
  size_t openSessions() const override { return sessions_.size(); }
  size_t certificateSize() const override { return kCertificate.size; }
  void releaseOutstanding() override;
  void reset() override;

  void violate(const std::string& what) { violations_.push_back(function_ + ": " + what); }

  /// Names the function for what is noted from now on.
  void begin(const std::string& function) { function_ = function; }
  /// Enters a call into the list and takes the answer that the test wants for it.
  Reply enter(Call call);
  void checkSession(void* session);
  void* openSession(const Reply& reply);
  void closeSession(void* session);
  void* freshHandle();

  /// A zeroed block that the module has to give back.
  void* handOut(size_t size);
  /// Takes one block back; the memory stays readable, overwritten, so that a late reader is seen.
  void takeBack(uintptr_t block);
  void takeBackAll(const Snapshot& record);

 protected:
  const std::string& known(const std::string& function) const override;

 private:
  struct Block {
    std::string origin;
    void* session;
    std::vector<uint8_t> memory;
  };

  std::map<uintptr_t, Block> blocks_;
  std::vector<Block> retired_;
  std::set<void*> sessions_;
  std::vector<std::string> violations_;
  std::string function_;
  void* session_ = nullptr;
  size_t handedOut_ = 0;
  size_t givenBack_ = 0;
  uintptr_t nextHandle_ = 0x5E550000;
};

State& Engine();

}  // namespace fake
