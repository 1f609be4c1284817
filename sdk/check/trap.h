// Survives what a faulty engine does.
#pragma once

#include <functional>
#include <string>

namespace check {

/// Runs `work`; the fault that ended it, or nothing. Exceptions of the language pass.
std::string FaultIn(const std::function<void()>& work);

/// Calls `report` and ends the process if the time between Begin and End of a watch gets too long.
void StartWatch(unsigned seconds, void (*report)());
void WatchBegins();
void WatchEnds();

}  // namespace check
