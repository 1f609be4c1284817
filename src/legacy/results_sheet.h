// The results sheet: shows the outcome of a decryption, of a verification, or of both.
#pragma once

#include "legacy/results_model.h"

namespace legacy {

/// Shows the results sheet over the active window until the user closes it. True when the user accepted (OK).
bool ShowResults(const Results& results);

}  // namespace legacy
