// What the code of a verification means to a person, and what the person can do.
#pragma once

#include <windows.h>

#include <string>

#include "console.h"

/// Ordered: the verdict on a file is the worst of its signatures.
enum class Level { kGood, kRemark, kBad };

struct Verdict {
  Level level;
  std::wstring wrong;  // empty if only the engine knows a text for the code
  std::wstring advice;
};

/// `code` is the status of a signature or the failure of a call.
Verdict Explain(LONG code, Language language);
