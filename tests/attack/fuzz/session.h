// The session that the targets of the engine's functions share.
#pragma once

#include "attack/fuzz/input.h"
#include "engine/functions.h"
#include "standin/base/codes.h"

namespace fuzz {

inline EngineSession Session() {
  static const EngineSession kSession = [] {
    EngineSession session = nullptr;
    Require(QUIVO_InitMinimal(&session) == 0);
    return session;
  }();
  return kSession;
}

inline DataBlob_t BlobOf(Input bytes) {
  return {static_cast<uint32_t>(bytes.size()), const_cast<uint8_t*>(bytes.data())};
}

/// A code of the engine, other than the one for a failure that nobody expected.
inline void RequireKnown(int32_t code) { Require(code != standin::kInternal); }

}  // namespace fuzz
