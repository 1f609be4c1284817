// Answers of an engine that keeps its contract and nothing more: any result, any output, any absent pointer.
#pragma once

#include <functional>
#include <set>

#include "attack/shared/random.h"
#include "fake_engine/fake_engine.h"

class EngineReplies {
 public:
  /// `during` runs in the middle of some calls.
  EngineReplies(Random& random, std::function<void()> during) : random_(random), during_(std::move(during)) {}

  fake::Reply replyTo(const fake::Call& call);
  /// The codes that were answered: the module returns some of them unchanged.
  const std::set<int32_t>& codes() const { return codes_; }

 private:
  int32_t code();
  fake::Text text();
  fake::Bytes bytes();
  fake::Certificate certificate();

  Random& random_;
  std::function<void()> during_;
  std::set<int32_t> codes_;
};
