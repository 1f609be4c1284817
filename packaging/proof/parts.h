// The list of what the kit runs, and the running of it.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "results.h"

namespace proof {

struct Part {
  std::string name;
  bool isShort = false;
  std::vector<std::string> needs;
  unsigned seconds = 0;
  std::string kind;
  std::string command;

  bool needsThat(const std::string& need) const { return std::find(needs.begin(), needs.end(), need) != needs.end(); }
};

/// The parts of the list; `error` names the line that is wrong. {kit} and {scratch} are replaced in commands; `kit` has
/// a backslash at its end.
std::vector<Part> ReadParts(const std::wstring& kit, std::string& error);

/// Runs a part, or skips it for the reason that `lacks` returns for one of its needs; empty means that there is none.
PartResult RunPart(const std::wstring& kit, const Part& part,
                   const std::function<std::string(const std::string&)>& lacks);

/// A part that is not run.
PartResult SkippedPart(const Part& part, const std::string& reason);

}  // namespace proof
