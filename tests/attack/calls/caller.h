// Makes one call, through the virtual table or through IDispatch, and examines how it ends.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "attack/calls/actors.h"
#include "attack/calls/engine_replies.h"
#include "attack/calls/members.h"
#include "attack/calls/values.h"

/// How often each member was called, and how often it succeeded.
struct Reached {
  size_t direct = 0;
  size_t late = 0;
  size_t succeeded = 0;
};
using Coverage = std::map<std::string, Reached>;

class Caller {
 public:
  /// Receives the call and what is wrong with it.
  using Complain = std::function<void(const std::string& call, const std::string& problem)>;

  Caller(Random& random, Actors& actors, const EngineReplies& engine, Coverage& coverage, Complain complain,
         bool printsCalls)
      : random_(random),
        actors_(actors),
        engine_(engine),
        coverage_(coverage),
        complain_(std::move(complain)),
        printsCalls_(printsCalls) {}

  /// `number` names the call in reports.
  void call(const std::string& number);

 private:
  HRESULT direct(const Target& target, IDispatch* object, CallValues& values);
  SlotValue directArgument(const Argument& argument, bool overwrites, CallValues& values);
  HRESULT late(const Target& target, IDispatch* object, CallValues& values);
  VARIANT lateArgument(const Argument& argument, bool overwrites, CallValues& values);
  VARIANT lateOutput(const std::string& type, bool overwrites, CallValues& values);
  HRESULT ask(IDispatch* object, CallValues& values);

  IDispatch* objectFor(const std::string& interfaceName, CallValues& values);
  bool isKnown(HRESULT hr) const;
  void examine(const std::string& name, HRESULT hr, CallValues& values);

  Random& random_;
  Actors& actors_;
  const EngineReplies& engine_;
  Coverage& coverage_;
  Complain complain_;
  bool printsCalls_;
};
