// What the results sheet shows: the outcome of a decryption, of a verification, or of both.
#pragma once

#include "engine/functions.h"

/// A verification that ended with remarks: shown like a success, returned as it stands.
constexpr int32_t kVerifiedWithRemarks = static_cast<int32_t>(0xE0700019);

/// Owned by the operation that shows it. The records are null where the operation has no such part.
struct Results {
  EngineSession session = nullptr;
  const DecryptResultRecord* decrypted = nullptr;
  const VerifyResultRecord* verified = nullptr;
  /// What the engine returned for the verification.
  int32_t verificationCode = 0;
};

/// Shows the results sheet over the active window until the user closes it. True when the user accepted (OK).
bool ShowResults(const Results& results);
