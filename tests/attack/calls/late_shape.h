// The shape of one late-bound call: the arguments in their order, and what callers do to it.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <functional>
#include <vector>

#include "attack/calls/members.h"
#include "attack/shared/random.h"

class LateShape {
 public:
  LateShape(const Target& target, Random& random);

  /// The next argument; it stays the caller's.
  void add(const VARIANT& value) { arguments_.insert(arguments_.begin(), value); }
  /// Wrong counts, names, flags, identifiers; `any` makes surplus arguments.
  void distort(const std::function<VARIANT()>& any);
  HRESULT invoke(IDispatch* object, VARIANT* result, EXCEPINFO* exception);

 private:
  void nameSome();
  void misname();

  const Target& target_;
  Random& random_;
  // As IDispatch wants them: from the last to the first.
  std::vector<VARIANT> arguments_;
  std::vector<DISPID> names_;
  DISPID id_;
  WORD flags_;
  IID iid_ = IID_NULL;
  bool hasNoArguments_ = false;
  bool hasNoNames_ = false;
  bool hasNoParameters_ = false;
};
